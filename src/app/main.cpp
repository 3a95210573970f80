#include <csignal>
#include <exception>
#include <map>

#include <QGuiApplication>

#include <CLI/CLI.hpp>

#include "app/window_run.h"
#include "platform/processes/quit_signals.h"
#include "platform/system_menus.h"
#include "records/logs/console_log.h"
#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"

namespace corvane {

namespace {

struct CommandLine {
    WindowOptions window;
    std::optional<Appearance::Scheme> scheme;
};

void declareOptions(CLI::App& parser, CommandLine& line) {
    static const std::map<std::string, Appearance::Scheme> schemes = {{"light", Appearance::Scheme::light},
                                                                      {"dark", Appearance::Scheme::dark}};
    parser.set_version_flag("--version", "Corvane " CORVANE_VERSION);
    parser.add_option("--home", line.window.home, "本次运行使用的用户主目录")->check(CLI::ExistingDirectory);
    parser.add_option("--appearance", line.scheme, "light 或 dark；默认跟随系统")
        ->transform(CLI::CheckedTransformer(schemes));
    parser.add_flag_callback("--log", &showConsoleLines, "在标准错误上给出开发用的日志行");
    parser.add_option("address", line.window.address, "corvane://open?path=… 打开一个文件夹");
}

int runWindows(const CommandLine& line) {
    useWindowFonts();
    const Appearance appearance(line.scheme);
    WindowOptions options = line.window;
    options.quitSignals = platform::catchQuitSignals();
    for (;;) {
        const WindowOutcome outcome = runWindow(options);
        if (!outcome.reopenHome) return outcome.exitStatus;
        options.home = *outcome.reopenHome;
        options.address.clear();
    }
}

} // namespace

} // namespace corvane

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    CLI::App parser("Corvane：把多年的邮件从 Apple Mail 归档出来");
    corvane::CommandLine line;
    corvane::declareOptions(parser, line);
    CLI11_PARSE(parser, argc, argv);
    try {
        corvane::thinTextStems();
        corvane::platform::declineSystemMenuItems();
        const QGuiApplication application(argc, argv);
        QGuiApplication::setDesktopFileName(QStringLiteral("corvane"));
        return corvane::runWindows(line);
    } catch (const std::exception& error) {
        corvane::messageLine(error.what());
        return EXIT_FAILURE;
    }
}
