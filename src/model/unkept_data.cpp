#include "model/unkept_data.h"

#include <system_error>

#include <fmt/format.h>

#include "records/texts/error_reasons.h"

namespace corvane {

std::string unkeptText(const ModelContext& context) {
    if (const std::error_code error = context.support.writeFailure())
        return fmt::format("没能写入 {}（{}）。这次的结果没有全部保存，下次运行时会重新读取或核对。",
                           context.support.baseDirectory(false), systemErrorReason(error.value()));
    if (const std::error_code& error = context.settings.saveFailure())
        return fmt::format("没能写入 {}（{}）。改动的设置没有保存。", context.settings.path(),
                           systemErrorReason(error.value()));
    return {};
}

} // namespace corvane
