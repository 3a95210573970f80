// Looks at places that may not answer, such as a dead network disk or a cloud folder that is offline. A look
// that makes no step for `platform::placeLimit` is given up, and so is one whose result a stop has made
// needless; what hung goes on by itself and touches nothing any more. A place that hung, with its disk, isn't
// looked at again in this process. Looks may run side by side.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/layers/file_layer.h"
#include "platform/platform.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane {

// What the question of one look works with. Valid until the question returns.
class PlaceLook {
  public:
    virtual ~PlaceLook() = default;

    // Refuses everything once the look was given up.
    [[nodiscard]] virtual platform::FileLayer& files() = 0;

    // To be called at the beginning of each step that may take as long as the limit.
    virtual void beginStep() = 0;

    // Nobody waits for the answer any more: the platform may have gone.
    [[nodiscard]] virtual bool isGivenUp() const = 0;
};

class PlaceLooks {
  public:
    // The platform and `files` have to outlive looks that hung (platform::waitForAbandonedJobs).
    PlaceLooks(const platform::Platform& platform, platform::FileLayer& files, std::stop_token stop,
               std::chrono::nanoseconds limit = platform::placeLimit);

    // Asks on a thread of its own and waits for the answer. Absent when the place can't be looked at, or
    // after a stop. The question owns all that it touches; one that throws gives no answer.
    template <class Answer>
    std::optional<Answer> ask(const std::string& place, std::function<Answer(PlaceLook&)> question) {
        const auto answer = std::make_shared<std::optional<Answer>>();
        const bool hasAnswered = run(
            place, [answer, question = std::move(question)](PlaceLook& look) { *answer = question(look); });
        if (!hasAnswered) return std::nullopt;
        return std::move(*answer);
    }

    // The same question for several places, side by side: their answers in the order of the places.
    template <class Answer>
    std::vector<std::optional<Answer>>
    askAll(const std::vector<std::string>& places,
           const std::function<Answer(PlaceLook&, const std::string& place)>& question) {
        std::vector<std::optional<Answer>> answers(places.size());
        callSideBySide(places.size(), [&](std::size_t i) {
            answers[i] = ask<Answer>(
                places[i], [question, place = places[i]](PlaceLook& look) { return question(look, place); });
        });
        return answers;
    }

  private:
    // call(i) for each i below `count`, in any order, on threads that may hang without harm to others.
    static void callSideBySide(std::size_t count, const std::function<void(std::size_t)>& call);
    bool run(const std::string& place, std::function<void(PlaceLook&)> question);
    [[nodiscard]] std::vector<std::string> hungWith(const std::string& place) const;

    const platform::Platform& platform_;
    platform::FileLayer& files_;
    std::stop_token stop_;
    std::chrono::nanoseconds limit_;
};

} // namespace corvane
