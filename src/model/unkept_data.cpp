#include "model/unkept_data.h"

#include <system_error>

#include <fmt/format.h>

#include "records/texts/error_reasons.h"

namespace corvane {

namespace {

const char* consequence(const CorvaneAppSupport& support) {
    return support.hasOutdatedReadings()
               ? "以前的核对结果中有一些已经不对，却没能删除：在解决之后再校验一次归档之前，请不要删除原件。"
               : "这次的结果没有全部保存，下次运行时会重新读取或核对。";
}

} // namespace

std::string unkeptResultsText(const CorvaneAppSupport& support) {
    const std::error_code error = support.writeFailure();
    if (!error) return {};
    return fmt::format("没能写入 {}（{}）。", support.baseDirectory(false),
                       systemErrorReason(error.value())) +
           consequence(support);
}

std::string unkeptSettingsText(const platform::SettingsStore& settings) {
    const std::error_code& error = settings.saveFailure();
    if (!error) return {};
    return fmt::format("没能写入 {}（{}）。改动的设置没有保存。", settings.path(),
                       systemErrorReason(error.value()));
}

std::string unkeptText(const ModelContext& context) {
    std::string results = unkeptResultsText(context.support);
    return results.empty() ? unkeptSettingsText(context.settings) : results;
}

} // namespace corvane
