// One JSON object whose text comes in pieces of any size. Its long lists are handed on in runs of whole
// elements, its other members one by one, so that the text is never in memory as a whole. Only quotes and
// brackets are followed here; what is handed on is checked by the parser that reads it. One object for one
// text, used by one thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {

class JsonObjectStream {
  public:
    enum class Wanted {
        elements, // of a list; as `whole` where the value is none
        whole,
        nothing,
    };

    class Receiver {
      public:
        virtual ~Receiver() = default;

        // How the member of this name is to be handed on. Keys are as written, escapes unresolved.
        virtual Wanted wanted(std::string_view key) = 0;
        virtual void beginList(std::string_view key) = 0;
        // Whole elements with the commas between them; never empty.
        virtual void addElements(std::string_view elements) = 0;
        virtual void addMember(std::string_view key, std::string_view value) = 0;
    };

    // The receiver must outlive the stream.
    explicit JsonObjectStream(Receiver& receiver)
      : receiver_(receiver) {}

    // Throws JsonError where the structure is broken, or one element or member has more than 32 MiB; whatever
    // the receiver throws passes on. To be thrown away after that.
    void add(std::string_view text);

    // Throws JsonError unless the object was whole.
    void finish() const;

  private:
    enum class State { start, firstKey, key, inKey, colon, value, inValue, inList, afterValue, end };

    void step(char byte);
    void stepOutside(char byte);
    void passKey(char byte);
    void beginValue(char byte);
    void endValue(char byte);
    void passMark(char byte);
    std::size_t passText(std::string_view text);
    void append(std::string_view text);

    Receiver& receiver_;
    State state_ = State::start;
    Wanted wanted_ = Wanted::nothing;
    std::string key_;
    std::string pending_;   // of the value, as far as it isn't handed on
    std::size_t depth_ = 0; // of brackets inside of the value
    bool needsElement_ = false;
    bool inString_ = false;
    bool isEscaped_ = false;
};

} // namespace corvane
