// "place-verdicts.json": what the last verification of each archive came to. It says what was found on its
// day and proves nothing. A value; touches the disk, so it belongs on a background task.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "records/stores/app_support.h"
#include "records/values.h"

namespace corvane {

struct KeptVerdict {
    struct Finding {
        std::string path; // relative to the root
        std::string fault;
    };

    std::string root;
    Date at{};
    std::int64_t checked = 0;
    std::int64_t intact = 0;
    std::int64_t withoutHash = 0;
    std::vector<Finding> findings;
};

class PlaceVerdictStore {
  public:
    explicit PlaceVerdictStore(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    // Empty where there is no file, or it can't be read: each verdict can be had again.
    [[nodiscard]] std::vector<KeptVerdict> load() const;

    // A failure is ignored.
    void save(const std::vector<KeptVerdict>& verdicts) const;

  private:
    CorvaneAppSupport support_;
};

} // namespace corvane
