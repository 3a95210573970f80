#include "screens/support/window_scene.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include <fmt/format.h>

#include "locations/archive_samples.h"
#include "records/archived/stable_id.h"
#include "records/stores/account_cache_store.h"

namespace corvane::testing {

namespace {

// What all archived messages have as their file.
constexpr std::string_view archivedFile = "Subject: x\n\n";

struct Account {
    const char* prefix;
    const char* name;
    bool isLocal;
    double share; // of the mail
    std::int64_t meanBytes;
};

constexpr std::array accounts = {Account{"imap://A", "zhiyuan.lin@hengtai.example", false, 0.52, 380'000},
                                 Account{"imap://B", "linzy@mail.example", false, 0.31, 150'000},
                                 Account{"imap://C", "zhiyuan@linjia.example", false, 0.12, 90'000},
                                 Account{"imap://D", "本地邮箱（我的 Mac 上）", true, 0.05, 60'000}};

struct Year {
    int year;
    int archived;
    int unarchived;
    int serverOnly;
};

// A tenth of what a busy person has.
constexpr std::array years = {Year{2009, 32, 0, 0},    Year{2010, 66, 0, 0},    Year{2011, 111, 0, 0},
                              Year{2012, 149, 0, 0},   Year{2013, 197, 0, 0},   Year{2014, 239, 0, 3},
                              Year{2015, 273, 0, 4},   Year{2016, 308, 0, 6},   Year{2017, 332, 0, 9},
                              Year{2018, 315, 22, 13}, Year{2019, 228, 89, 20}, Year{2020, 98, 188, 30},
                              Year{2021, 40, 232, 42}, Year{2022, 0, 225, 39},  Year{2023, 0, 202, 42},
                              Year{2024, 0, 168, 52},  Year{2025, 0, 125, 52}};

constexpr std::array folders = {"收件箱", "已发送邮件", "客户往来", "江湾小学改造"};
constexpr std::array subjects = {"关于江湾小学改造二期施工图的回复",
                                 "【合同】恒泰设计 2020 年度框架协议（盖章扫描件）",
                                 "Re: 现场照片与整改意见，请今天内确认",
                                 "发票与报销单：3 月至 5 月",
                                 "会议纪要：图书角方案讨论（第 4 次）",
                                 "投标文件电子版，请查收",
                                 "转发：结构计算书 V3",
                                 "材料样板确认单",
                                 "施工许可证补正材料",
                                 "五一值班安排与联系电话",
                                 "电子行程单：上海—成都 5 月 6 日"};
constexpr std::array senders = {"周明哲", "陈思远", "赵建国", "财务部", "刘晓彤", "城南招标代理", "王雨桐"};

MailMessageRecord makeMessage(const TemporaryHome& home, const Account& account, int year, int number) {
    MailMessageRecord message;
    message.id = home.at(fmt::format("Library/Mail/V10/{}/{}-{}.emlx", account.prefix + 7, year, number));
    message.fileURL = FileURL(message.id);
    message.subject = subjects[static_cast<std::size_t>(number) % subjects.size()];
    message.sender =
        fmt::format("{} <s@x.example>", senders[static_cast<std::size_t>(number) % senders.size()]);
    message.mailbox = folders[static_cast<std::size_t>(number * 7 % 10 / 3)];
    message.accountIdentifier = SharedText(account.prefix);
    message.messageIdentifier = SharedText(fmt::format("{}-{}-{}@x", account.prefix, year, number));
    message.messageSize = account.meanBytes / 4 + account.meanBytes * (number % 17) / 12;
    message.date = std::chrono::sys_days(std::chrono::year(year) / 1 / 3) +
                   std::chrono::hours(29 * (number % 300)) + std::chrono::minutes(number % 60);
    return message;
}

} // namespace

WindowScene::WindowScene() {
    model_.mail().scanFlow.loadCachedScanIfNeeded(false);
    settle();
}

ModelContext& WindowScene::withAccounts(ModelContext& context) {
    std::vector<MailAccount> known;
    for (const Account& account : accounts) {
        MailAccount made;
        made.urlPrefix = account.prefix;
        made.emailAddress = account.name;
        made.isLocalStore = account.isLocal;
        made.scheme = "imap";
        for (std::size_t folder = 0; folder < 24 / (known.size() + 1); ++folder)
            made.folders.push_back({fmt::format("文件夹 {}", folder), 10});
        known.push_back(made);
    }
    MailAccountCacheStore(context.support).save(context.mailRootPath, known);
    return context;
}

void WindowScene::settle() {
    waitUntilIdle(context_.tasks);
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        waitUntilIdle(context_.tasks);
    }
}

void WindowScene::fill(Destination destination) {
    MessageList messages;
    EmailArchiveIndex index{Date(std::chrono::seconds(1)), Date(std::chrono::seconds(2)), {}};
    CountByYear indexed;
    AvailabilityResult known;
    auto local = std::make_shared<SharedTextSet>();
    for (auto year = years.rbegin(); year != years.rend(); ++year) {
        for (const Account& account : accounts) {
            const auto archived = static_cast<int>(year->archived * account.share);
            const auto count = archived + static_cast<int>(year->unarchived * account.share);
            for (int number = count - 1; number >= 0; --number) {
                messages.push_back(makeMessage(home_, account, year->year, number));
                local->insert(messages.back().id);
                // Mail of 2018 is whole, of 2017 one in each account is cut short; the rest has no file.
                const bool isCutShort = year->year == 2017 && number == 0;
                if (year->year == 2018 || isCutShort)
                    home_.write(messages.back().id.str().substr(home_.path().size() + 1),
                                isCutShort ? "99\nMessage-ID: <x@y>\n\n" : "19\nMessage-ID: <x@y>\n\n");
                if (number >= archived) continue;
                ArchivedEmailRecord record = sampleRecord(stableID(messages.back()));
                record.sizeBytes = archivedFile.size();
                record.emlRelativePath = "2009/a.eml";
                index.records.push_back(std::move(record));
            }
            indexed[year->year] += count;
        }
        indexed[year->year] += year->serverOnly;
    }
    writeIndex(home_, "Documents/邮件归档", index);
    home_.write("Documents/邮件归档/2009/a.eml", archivedFile);
    if (destination == Destination::chosen)
        model_.archiving().destinations.setTransferDestination(home_.at("Documents/邮件归档"));
    auto list = std::make_shared<const MessageList>(std::move(messages));
    known.locallyAvailableIDs = local;
    known.yearByID = std::make_shared<const YearByID>(computeMessageYears(*list));
    MailScanSummary summary = makeSummary(allOf(*list), static_cast<std::int64_t>(list->size()));
    model_.mail().catalog.restore(MessageSet::make(list, false), std::move(summary), known);
    model_.mail().accounts.setSelectedAccountPrefixes({});
    // Some of what the server has lies here in part.
    model_.mail().counts.setIndexed({indexed, {}, true, {{"imap://B", {{2024, 31}, {2025, 15}}}}});
    settle();
}

void WindowScene::showLatest() {
    const auto expected =
        static_cast<std::int64_t>(model_.archiving().candidates.archiveCandidates()->size());
    QEventLoop loop;
    const auto isShown = [&] {
        return window_.home()->tree()->overview()->candidateCount() == expected &&
               window_.home()->figures().isKnown;
    };
    QObject::connect(window_.home(), &HomeScreen::figuresChanged, &loop, [&] {
        if (isShown()) loop.quit();
    });
    QTimer::singleShot(std::chrono::seconds(30), &loop, &QEventLoop::quit);
    if (!isShown()) loop.exec();
    settle();
}

void WindowScene::waitForRelease() {
    released_.wait();
}

void WindowScene::release() {
    if (!released_.try_wait()) released_.count_down();
}

int WindowScene::treeRow(const QString& title, int from) {
    const OrganizeTreeModel& tree = *window_.home()->tree();
    for (int row = from; row < tree.rowCount(); ++row) {
        if (tree.data(tree.index(row), OrganizeTreeModel::TitleRole).toString() == title) return row;
    }
    return -1;
}

} // namespace corvane::testing
