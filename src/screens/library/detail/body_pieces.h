// The text of an archived mail as the reading pane lays it out. Made in the background: linear in the text.
#pragma once

#include <string>
#include <vector>

#include <QString>

#include "mime/body/body_segments.h"

namespace corvane {

struct BodyPiece {
    struct Mark {
        int start = 0; // in UTF-16 units of the text
        int length = 0;
    };

    QString text;
    mime::SegmentStyle style = mime::SegmentStyle::body;
    bool isSeparator = false; // names what stands below it
    std::vector<Mark> marks;  // places of the search
};

struct ShownBody {
    mime::BodyParts parts;
    std::vector<BodyPiece> pieces;
    bool isCut = false; // the end is left out: nobody scrolls through that much
};

struct BodyToShow {
    mime::BodyParts parts;
    mime::ShownParts shown;
    std::string query; // empty for no marks
};

ShownBody shownBody(BodyToShow body);

} // namespace corvane
