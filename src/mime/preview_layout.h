// The decoded text of a message as a list shows it: without markup, style sheets and signatures. Pure
// functions on UTF-8, linear in their input, any thread. Where a regular expression would take too long on a
// hostile text, it counts as not matching.
#pragma once

#include <string>
#include <string_view>

namespace corvane::mime {

// All of the steps below; the result may be long.
std::string plainPreviewText(std::string_view body);

// Without rules of a style sheet at the start, which some programs leave outside of a style element.
std::string stripLeadingCSSNoise(std::string_view text);

// Six common references only. "&amp;" goes before "&lt;", so "&amp;lt;" becomes "<".
std::string htmlEntityDecoded(std::string_view text);

// The text before a closing formula, a signature or a disclaimer. Where less than twelve characters stand
// before it, the formula is the message, and stays.
std::string stripSignatureContent(std::string_view text);

// One blank between words, no header lines or boundaries of MIME, no more than one empty line.
std::string normalizedPreviewFormatting(std::string_view text);

// A rule of a style sheet, or several of its properties.
bool looksLikeCSSNoiseLine(std::string_view line);

// Whether a preview is to be made again: a placeholder, or leftovers of MIME, style sheets or a wrong
// charset.
bool previewLooksCorrupt(std::string_view preview);

} // namespace corvane::mime
