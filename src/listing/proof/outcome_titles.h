// What the outcomes of a proof are called wherever a person reads them.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "listing/proof/proof_outcome.h"

namespace corvane {

constexpr std::string_view proofOutcomeTitle(ProofOutcome outcome) {
    constexpr std::array<std::string_view, proofOutcomeCount> titles = {
        "还没有核对", "已逐字节核对", "与归档不一致", "读不出来", "归档文件不见了或有改动", "原件不完整"};
    return titles.at(static_cast<std::size_t>(outcome));
}

} // namespace corvane
