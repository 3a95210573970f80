#include "cli/command_line.h"

#include <exception>
#include <functional>
#include <map>
#include <string>
#include <system_error>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/output.h"
#include "platform/files/directory.h"
#include "records/error_reasons.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

struct CommonOptions {
    std::string home;
    bool json = false;
};

using Action = std::function<int()>;

// What failed, as its thrower named it, with a reason such as a full disk in the user's language.
std::string inWordsForUsers(const std::system_error& error) {
    std::string text = error.what();
    const std::string reason = error.code().message();
    const auto& category = error.code().category();
    const bool isOfSystem = category == std::generic_category() || category == std::system_category();
    if (!isOfSystem || !text.ends_with(reason)) return text;
    return text.replace(text.size() - reason.size(), reason.size(), systemErrorReason(error.code().value()));
}

// Holds everything that the parser writes into; each command notes what is to be run.
class CommandLine {
  public:
    CommandLine() {
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_option("--home", common_.home, "本次运行使用的用户主目录")->check(CLI::ExistingDirectory);
        app_.add_flag("--json", common_.json, "在标准输出上给出一个 JSON 文档");
        app_.add_flag_callback("--log", &showConsoleLines, "在标准错误上给出开发用的日志行");
        addScanCommands();
        addArchiveCommands();
        addLibraryCommands();
    }

    int run(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            const bool isHelp = error.get_exit_code() == 0;
            app_.exit(error);
            return isHelp ? done : wrongUsage;
        }
        return runAction();
    }

  private:
    int runAction() {
        try {
            return action_();
        } catch (const Interrupted& interruption) {
            messageLine(interruption.what());
            return interrupted;
        } catch (const std::system_error& error) {
            return reportFailure(inWordsForUsers(error));
        } catch (const std::exception& error) {
            return reportFailure(error.what());
        }
    }

    int reportFailure(const std::string& message) const {
        messageLine(message);
        if (common_.json) printFailure(message);
        return failed;
    }

    static void printFailure(const std::string& message) {
        JsonDocument document;
        document.object([&] { document.member("error", message); });
        try {
            document.print();
        } catch (const std::exception& error) {
            messageLine(error.what());
        }
    }

    template <class Run>
    void command(CLI::App* subcommand, Run run) {
        subcommand->callback([this, run] {
            action_ = [this, run] {
                Session session(common_.home);
                return run(session);
            };
        });
    }

    void addScanCommands() {
        command(app_.add_subcommand("accounts", "从 Mail 存储读取账户"),
                [this](Session& session) { return runAccounts(session, common_.json); });
        command(app_.add_subcommand("refresh", "完整刷新：账户，然后扫描全部邮件"),
                [this](Session& session) { return runRefresh(session, common_.json); });
        auto* scan = app_.add_subcommand("scan", "扫描所选账户");
        scan->add_option("--max-year", scanYear_, "只扫描这一年及以前的邮件");
        command(scan, [this](Session& session) { return runScan(session, scanYear_, common_.json); });
        addMessages();
        auto* preview = app_.add_subcommand("preview", "一封 .emlx 邮件的预览文字");
        preview->add_option("file", previewFile_, "邮件文件")->required();
        command(preview,
                [this](Session& session) { return runPreview(session, previewFile_, common_.json); });
        command(app_.add_subcommand("diagnose", "写出恢复邮件的诊断日志"),
                [this](Session& session) { return runDiagnose(session, common_.json); });
        auto* stats = app_.add_subcommand("stats", "上次扫描的统计");
        stats->add_option("--year", statsYears_, "限定年份")->allow_extra_args(false);
        command(stats, [this](Session& session) { return runStats(session, statsYears_, common_.json); });
    }

    void addMessages() {
        static const std::map<std::string, MailSortMode> sorts = {{"newest", MailSortMode::newest},
                                                                  {"messageSize", MailSortMode::messageSize}};
        static const std::map<std::string, MigratedFilter> filters = {
            {"all", MigratedFilter::all},
            {"notMigrated", MigratedFilter::notMigrated},
            {"onlyMigrated", MigratedFilter::onlyMigrated}};
        auto* messages = app_.add_subcommand("messages", "上次扫描的邮件列表");
        messages->add_option("--account", messages_.accounts, "账户前缀")->allow_extra_args(false);
        messages->add_option("--year", messages_.years, "年份")->allow_extra_args(false);
        messages->add_option("--query", messages_.query, "搜索文字");
        messages->add_option("--min-attachments", messages_.minimumAttachments, "最少附件数");
        messages->add_option("--sort", messages_.sort, "排序：newest 或 messageSize")
            ->transform(CLI::CheckedTransformer(sorts));
        messages->add_flag("--ascending", messages_.ascending, "升序");
        messages->add_option("--filter", messages_.filter, "all、notMigrated 或 onlyMigrated")
            ->transform(CLI::CheckedTransformer(filters));
        command(messages, [this](Session& session) { return runMessages(session, messages_, common_.json); });
    }

    void addArchiveCommands() {
        auto* archive = app_.add_subcommand("archive", "把候选邮件归档到一个文件夹");
        archive->add_option("--to", archive_.destination, "归档文件夹")->required();
        archive->add_option("--account", archive_.accounts, "账户前缀")->allow_extra_args(false);
        archive->add_option("--year", archive_.years, "年份")->allow_extra_args(false);
        archive->add_option("--min-size", archive_.minimumBytes, "最小字节数")->check(CLI::NonNegativeNumber);
        archive->add_option("--max-year", archive_.maximumYear, "这一年及以前");
        archive->add_option("--limit", archive_.limit, "最多归档的封数")->check(CLI::NonNegativeNumber);
        archive->add_flag("--no-index", archive_.withoutIndex, "不建立正文索引");
        command(archive, [this](Session& session) { return runArchive(session, archive_, common_.json); });
        auto* prove = app_.add_subcommand("prove", "逐字节核对已归档邮件的原件与归档副本");
        prove->add_option("--account", prove_.accounts, "账户前缀")->allow_extra_args(false);
        prove->add_option("--year", prove_.years, "年份")->allow_extra_args(false);
        command(prove, [this](Session& session) { return runProve(session, prove_, common_.json); });
        auto* verify = app_.add_subcommand("verify", "重新读取整个归档并与索引核对");
        verify->add_option("root", archiveRoot_, "归档文件夹")->required();
        verify->add_flag("--record", recordsHashes_, "为没有校验值的记录补记校验值");
        verify->callback([this] {
            action_ = [this] {
                return runVerify(archiveRoot_, {common_.home, recordsHashes_}, common_.json);
            };
        });
        auto* sums = app_.add_subcommand("sums", "归档的校验值，可用 sha256sum -c 或 shasum -c 核对");
        sums->add_option("root", archiveRoot_, "归档文件夹")->required();
        sums->callback([this] { action_ = [this] { return runSums(archiveRoot_, common_.json); }; });
        auto* rebuild = app_.add_subcommand("rebuild", "把索引中没有的 .eml 邮件收入归档索引");
        rebuild->add_option("root", archiveRoot_, "归档文件夹")->required();
        rebuild->add_flag("--dry-run", isDryRun_, "只查看，不写入");
        rebuild->callback([this] {
            action_ = [this] { return runRebuild(archiveRoot_, {common_.home, isDryRun_}, common_.json); };
        });
    }

    void addLibraryCommands() {
        command(app_.add_subcommand("locations", "已知的归档位置"),
                [this](Session& session) { return runLocations(session, common_.json); });
        auto* library = app_.add_subcommand("library", "已归档的邮件");
        library->add_option("--location", library_.location, "归档位置");
        library->add_option("--mailbox", library_.mailbox, "邮箱名称");
        library->add_flag("--ascending", library_.ascending, "旧邮件在前");
        command(library, [this](Session& session) { return runLibrary(session, library_, common_.json); });
        addTextCommands();
    }

    void addTextCommands() {
        auto* search = app_.add_subcommand("search", "在所有归档中全文搜索");
        search->add_option("text", searchText_, "要找的文字")->required();
        command(search, [this](Session& session) { return runSearch(session, searchText_, common_.json); });
        auto* index = app_.add_subcommand("index", "为所有归档位置准备正文索引");
        index->add_flag("--force", forcesIndex_, "全部重新建立");
        command(index, [this](Session& session) { return runIndex(session, forcesIndex_, common_.json); });
        auto* show = app_.add_subcommand("show", "一封已归档的邮件");
        show->add_option("entry", entryID_, "library 命令给出的 entryID")->required();
        command(show, [this](Session& session) { return runShow(session, entryID_, common_.json); });
        auto* attachment = app_.add_subcommand("attachment", "取出一个附件");
        attachment->add_option("entry", attachment_.entryID, "library 命令给出的 entryID")->required();
        attachment->add_option("name", attachment_.name, "附件的名称")->required();
        attachment->add_option("--to", attachment_.target, "新文件，或已有的文件夹")->required();
        command(attachment,
                [this](Session& session) { return runAttachment(session, attachment_, common_.json); });
    }

    CLI::App app_{"Corvane：把多年的邮件从 Apple Mail 归档出来"};
    CommonOptions common_;
    std::optional<std::int64_t> scanYear_;
    std::string previewFile_;
    std::vector<std::int64_t> statsYears_;
    MessagesOptions messages_;
    ArchiveOptions archive_;
    ProveOptions prove_;
    LibraryOptions library_;
    std::string archiveRoot_;
    bool recordsHashes_ = false;
    bool isDryRun_ = false;
    std::string searchText_;
    bool forcesIndex_ = false;
    std::string entryID_;
    AttachmentOptions attachment_;
    Action action_;
};

} // namespace

int runCommandLine(int argc, char** argv) {
    return CommandLine().run(argc, argv);
}

} // namespace corvane::cli
