#include <csignal>
#include <cstdio>
#include <map>

#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <CLI/CLI.hpp>

#include "model/corvane_view_model.h"
#include "model/model_context.h"
#include "platform/platform.h"
#include "screens/appearance.h"
#include "screens/fonts.h"
#include "screens/window_model.h"

namespace corvane {

namespace {

struct Options {
    std::string home;
    std::optional<Appearance::Scheme> scheme;
    std::string url;
};

void declareOptions(CLI::App& commandLine, Options& options) {
    static const std::map<std::string, Appearance::Scheme> schemes = {{"light", Appearance::Scheme::light},
                                                                      {"dark", Appearance::Scheme::dark}};
    commandLine.set_version_flag("--version", "Corvane " CORVANE_VERSION);
    commandLine.add_option("--home", options.home, "本次运行使用的用户主目录")->check(CLI::ExistingDirectory);
    commandLine.add_option("--appearance", options.scheme, "light 或 dark；默认跟随系统")
        ->transform(CLI::CheckedTransformer(schemes));
    commandLine.add_option("url", options.url, "corvane:// 链接");
}

int runWindow(const Options& options) {
    const std::unique_ptr<platform::Platform> system = platform::makePlatform(options.home);
    ModelContext context(*system);
    context.performanceLog.reset();
    context.startupLog.reset();
    CorvaneViewModel model(context);
    const Appearance appearance(options.scheme);
    WindowModel window(model);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(":/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&window)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Corvane/qml/shell/Main.qml")));
    if (engine.rootObjects().isEmpty()) return EXIT_FAILURE;
    return QGuiApplication::exec();
}

} // namespace

} // namespace corvane

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    CLI::App commandLine("Corvane：把多年的邮件从 Apple Mail 归档出来");
    corvane::Options options;
    corvane::declareOptions(commandLine, options);
    CLI11_PARSE(commandLine, argc, argv);
    const QGuiApplication application(argc, argv);
    corvane::useWindowFonts();
    return corvane::runWindow(options);
}
