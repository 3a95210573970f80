#include <map>
#include <memory>
#include <optional>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "model/unkept_data.h"
#include "platform/paths.h"

namespace corvane::cli {

namespace {

using Backup = std::optional<CorvaneConfigBackup>;

enum class Action { exported, imported, shown, offered, offerApplied };

struct ConfigOptions {
    Action action = Action::shown;
    std::string file;
};

int answer(const Backup& backup, const std::string& text, bool json) {
    if (!json) {
        printLines(text);
        return done;
    }
    JsonDocument document;
    if (backup)
        document.value(*backup);
    else
        document.null();
    document.print();
    return done;
}

void requireSuccess(const ConfigBackupFlow& flow) {
    if (flow.hasFailed()) throw CommandFailure(flow.resultMessage().value_or(""));
}

int runExport(Session& session, const std::string& file, bool json) {
    ConfigBackupFlow& flow = session.model().library().configBackup;
    flow.exportConfig(platform::standardizedPath(file));
    session.waitUntilIdle();
    requireSuccess(flow);
    return answer(flow.currentConfigBackup(), flow.resultMessage().value_or(""), json);
}

int apply(Session& session, const CorvaneConfigBackup& backup, bool json) {
    const CorvaneConfigBackup applied = backup;
    session.model().applyConfigBackup(applied);
    session.waitUntilIdle();
    session.requireKept(unkeptSettingsText(session.context().settings));
    const auto& message = session.model().library().configBackup.resultMessage();
    return answer(applied, configBackupSummary(applied) + "\n" + message.value_or(""), json);
}

int runImport(Session& session, const std::string& file, bool json) {
    ConfigBackupFlow& flow = session.model().library().configBackup;
    flow.importConfig(platform::standardizedPath(file));
    session.waitUntilIdle();
    requireSuccess(flow);
    return apply(session, flow.pendingImport().value(), json);
}

int runOffer(Session& session, bool isToBeApplied, bool json) {
    ConfigBackupFlow& flow = session.model().library().configBackup;
    flow.offerConfigBackupOnFreshLaunch();
    session.waitUntilIdle();
    const Backup& offered = flow.pendingRestore();
    if (isToBeApplied && !offered) throw CommandFailure("没有可以恢复的配置备份");
    if (isToBeApplied) return apply(session, *offered, json);
    return answer(offered, offered ? configBackupSummary(*offered) : "没有可以恢复的配置备份", json);
}

int runConfig(Session& session, const ConfigOptions& options, bool json) {
    const bool hasFile = options.action == Action::exported || options.action == Action::imported;
    if (hasFile == options.file.empty())
        throw WrongUsage(hasFile ? "要给出备份文件的路径" : "这个操作不需要文件");
    // What the start has begun may still change settings.
    session.waitUntilIdle();
    switch (options.action) {
    case Action::exported:
        return runExport(session, options.file, json);
    case Action::imported:
        return runImport(session, options.file, json);
    case Action::offered:
    case Action::offerApplied:
        return runOffer(session, options.action == Action::offerApplied, json);
    case Action::shown:
        break;
    }
    const CorvaneConfigBackup current = session.model().library().configBackup.currentConfigBackup();
    return answer(current, configBackupSummary(current), json);
}

} // namespace

void addConfigCommand(CommandSet& commands) {
    static const std::map<std::string, Action> actions = {{"export", Action::exported},
                                                          {"import", Action::imported},
                                                          {"show", Action::shown},
                                                          {"offer", Action::offered},
                                                          {"apply-offer", Action::offerApplied}};
    auto options = std::make_shared<ConfigOptions>();
    CLI::App& config = commands.add("config", "配置备份：归档位置、默认目的地、账号合并规则",
                                    {{{"config export ~/配置.corvanebackup", "导出到一个文件"},
                                      {"config apply-offer", "在新电脑上恢复归档里的备份"}}});
    config.add_option("action", options->action, "要做什么")->required()->transform(oneOf(actions));
    config.add_option("file", options->file, "导出到或导入自的文件")->type_name("FILE");
    commands.setRun(config,
                    [options](Session& session, bool json) { return runConfig(session, *options, json); });
}

} // namespace corvane::cli
