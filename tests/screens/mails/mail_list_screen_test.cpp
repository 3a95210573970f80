#include "screens/mails/mail_list_screen.h"

#include <filesystem>
#include <optional>

#include <QTest>
#include <QUrl>
#include <fmt/format.h>

#include "model/model_test.h"
#include "platform/files/directory.h"
#include "records/texts/preview_placeholders.h"
#include "screens/support/mail_samples.h"
#include "screens/support/recording_desktop.h"

namespace corvane::testing {
namespace {

using State = MailListScreen::State;

class MailListScreenTest : public ModelTest {
  protected:
    // A message whose file exists.
    MailMessageRecord local(const std::string& name, int year = 2021) {
        MailMessageRecord message = sampleMessage(home_.write("Library/Mail/V10/A/收件箱.mbox/" + name, "x"));
        message.subject = name;
        message.date = dateIn(year);
        message.messageIdentifier = SharedText(name + "@a.example");
        return message;
    }

    void publish(MessageList messages) {
        model_.mail().catalog.setMessages(
            MessageSet::make(std::make_shared<const MessageList>(std::move(messages)), false), {});
        waitUntilIdle(context_.tasks);
    }

    void settle() {
        QCoreApplication::processEvents();
        waitUntilIdle(context_.tasks);
    }

    [[nodiscard]] QStringList subjects() const {
        QStringList all;
        for (const auto& message : *screen_.list()->records())
            all += QString::fromStdString(message.subject.str());
        return all;
    }

    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
    RecordingDesktop desktop_;
    mutable MailListScreen screen_{model_, desktop_};
};

TEST_F(MailListScreenTest, EveryReasonForAnEmptyListIsToldApart) {
    EXPECT_EQ(screen_.state(), State::Loading) << "the last result hasn't been looked for";
    model_.mail().scanFlow.loadCachedScanIfNeeded(false);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(screen_.state(), State::NeverScanned);

    model_.mail().catalog.setMessages(
        MessageSet::make(std::make_shared<const MessageList>(MessageList{local("a")}), false), {});
    EXPECT_EQ(screen_.state(), State::Loading);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(screen_.state(), State::Listed);

    screen_.filters()->setQuery(QStringLiteral("没有这样的邮件"));
    screen_.filters()->applyQuery();
    settle();
    EXPECT_EQ(screen_.state(), State::NoMatch);
    screen_.filters()->clear();
    settle();
    EXPECT_EQ(screen_.state(), State::Listed);

    publish({sampleMessage("/nowhere/1.emlx")});
    EXPECT_EQ(screen_.state(), State::NothingLocal);

    publish({});
    model_.mail().scanFlow.scan(); // this home has no Mail index
    EXPECT_EQ(screen_.state(), State::Scanning);
    EXPECT_EQ(screen_.stateText(), QStringLiteral("正在准备扫描..."));
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(screen_.state(), State::Failed);
    EXPECT_FALSE(screen_.stateText().isEmpty());

    home_.write("Library/Mail/V10/MailData/Envelope Index", "");
    screen_.access()->recheckAccess();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(screen_.state(), State::NoAccess);
}

TEST_F(MailListScreenTest, DetailFollowsTheRowAndTheModelKnowsIt) {
    publish({local("a"), local("b"), local("c")});
    EXPECT_EQ(screen_.detail()->shown().subject, QStringLiteral("a"));
    screen_.selection()->select(1);
    EXPECT_EQ(screen_.detail()->shown().subject, QStringLiteral("b"));
    EXPECT_TRUE(model_.mail().visible.selectedMessageID()->ends_with("/b"));

    publish({local("a1"), local("a2"), local("b")}); // another generation
    EXPECT_EQ(screen_.detail()->shown().subject, QStringLiteral("b"));
    EXPECT_EQ(screen_.selection()->currentRow(), 2);
    publish({local("x")});
    EXPECT_EQ(screen_.detail()->shown().subject, QStringLiteral("x"));
    publish({});
    EXPECT_FALSE(screen_.detail()->hasMessage());
}

TEST_F(MailListScreenTest, ARowChosenWhileTheNextListIsMadeStaysChosen) {
    publish({local("a"), local("b"), local("c")});
    screen_.filters()->setAscending(true);
    screen_.filters()->setMinimumAttachments(0);
    QObject::connect(&model_.mail().visible, &VisibleMessages::visibleMessagesChanged,
                     [&] { screen_.selection()->select(2); });
    settle();
    EXPECT_EQ(screen_.detail()->shown().subject, QStringLiteral("c"));
}

TEST_F(MailListScreenTest, FiltersShowWhatTheyHoldAndGoBothWays) {
    auto other = local("o", 2018);
    other.accountIdentifier = SharedText("imap://B");
    other.accountName = SharedText("b@b.example");
    other.messageSize = 5;
    auto lost = local("u", 2021);
    lost.accountIdentifier.reset();
    lost.accountName.reset();
    lost.messageSize = 3;
    publish({local("a", 2020), local("b", 2021), other, lost, sampleMessage("/gone")});
    MailListFilters& filters = *screen_.filters();

    const auto& accounts = *filters.accounts()->records();
    ASSERT_EQ(accounts.size(), 3U);
    EXPECT_EQ(accounts[0], (FilterOption{"imap://A", QStringLiteral("a@a.example"), 2, false}));
    EXPECT_EQ(accounts[2], (FilterOption{"legacy-unclassified", QStringLiteral("未识别邮箱"), 1, false}));
    ASSERT_EQ(filters.years()->options()->count(), 3);
    EXPECT_EQ(filters.years()->options()->records()->at(0),
              (FilterOption{"2021", QStringLiteral("2021 年"), 2, false}));

    filters.toggleAccount(0);
    filters.years()->toggle(0);
    filters.years()->toggle(1);
    settle();
    EXPECT_EQ(subjects(), texts({"b", "a"}));
    EXPECT_EQ(filters.chips(), texts({"a@a.example", "2020–2021 年"}));
    filters.removeChip(0);
    filters.setMinimumAttachments(1);
    settle();
    EXPECT_EQ(filters.chips(), texts({"至少 1 个附件", "2020–2021 年"}));
    EXPECT_TRUE(subjects().isEmpty());
    filters.clear();
    settle();
    EXPECT_EQ(subjects().size(), 4);

    model_.applyHomeScope("imap://B", {2018}); // another screen narrows the list
    settle();
    EXPECT_EQ(filters.chips(), texts({"b@b.example", "2018 年"}));
    EXPECT_TRUE(filters.accounts()->records()->at(1).isTicked);
}

TEST_F(MailListScreenTest, TypingReachesTheModelWhenItPauses) {
    publish({local("a"), local("b")});
    int told = 0;
    QObject::connect(&model_.mail().filters, &ModelFilters::listFilterChanged, [&] { ++told; });
    for (const char* typed : {"b", "bx", "b"}) screen_.filters()->setQuery(QString::fromLatin1(typed));
    // Something else changes meanwhile: the field keeps what was typed.
    screen_.filters()->setAscending(true);
    EXPECT_EQ(screen_.filters()->query(), QStringLiteral("b"));
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return told == 2; }));
    settle();
    EXPECT_EQ(subjects(), texts({"b"}));
}

TEST_F(MailListScreenTest, ArchivedMessagesAreMarkedAndNotHandedOver) {
    publish({local("a"), local("b"), local("c")});
    std::shared_ptr<const SharedTextSet> handed;
    QObject::connect(screen_.actions(), &MailListActions::archiveRequested,
                     [&](const auto& ids) { handed = ids; });
    screen_.list()->setArchivedIDs(std::make_shared<const SharedTextSet>(SharedTextSet{local("b").id}));

    screen_.selection()->selectAll();
    EXPECT_TRUE(screen_.canArchive());
    EXPECT_TRUE(screen_.selectionText().startsWith(QStringLiteral("已选 3 封 · 3 MB")));
    screen_.actions()->archiveSelection();
    settle();
    ASSERT_NE(handed, nullptr);
    EXPECT_EQ(*handed, (SharedTextSet{local("a").id, local("c").id}));

    handed = nullptr;
    screen_.selection()->select(1);
    EXPECT_FALSE(screen_.canArchive());
    EXPECT_EQ(screen_.selectionText(), QString());
    screen_.actions()->archiveSelection();
    settle();
    EXPECT_EQ(handed, nullptr);
}

TEST_F(MailListScreenTest, WhatWasSetAsideIsNotOfferedUntilItIsTakenBack) {
    publish({local("a"), local("b")});
    EXPECT_EQ(screen_.filters()->troubledCountText(), QString());
    screen_.actions()->setAside(true);
    settle();
    EXPECT_TRUE(screen_.detail()->shown().isSetAside);
    EXPECT_FALSE(screen_.canArchive());
    EXPECT_EQ(screen_.filters()->troubledCountText(), QStringLiteral("1"));
    screen_.filters()->setOnlyTroubled(true);
    settle();
    EXPECT_EQ(subjects(), texts({"a"}));
    screen_.actions()->setAside(false);
    settle();
    EXPECT_TRUE(subjects().isEmpty());
    screen_.filters()->clear();
    settle();
    EXPECT_TRUE(screen_.canArchive());
}

TEST_F(MailListScreenTest, CopiesAndOpensWhatIsSelected) {
    const TimeZoneGuard zone("UTC");
    auto formula = local("=HYPERLINK(1)\n第二行");
    formula.messageIdentifier = SharedText("a b/c?d#\"@x");
    publish({local("a"), formula});
    screen_.selection()->selectAll();
    screen_.actions()->copySelection();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(desktop_.copied.toStdString(),
              "2021-06-15 04:00 · 周明哲 <zhou@a.example> · =HYPERLINK(1) 第二行 · 1 MB\n"
              "2021-06-15 04:00 · 周明哲 <zhou@a.example> · a · 1 MB");

    screen_.selection()->select(0);
    screen_.actions()->openInMail();
    EXPECT_EQ(desktop_.opened, texts({"message:%3Ca%20b%2Fc%3Fd%23%22@x%3E"}));
    screen_.actions()->copySubject();
    EXPECT_EQ(desktop_.copied, QStringLiteral("=HYPERLINK(1)\n第二行"));

    desktop_.opens = false; // a system without such programs
    QStringList told;
    QObject::connect(screen_.actions(), &MailListActions::failed, [&](const QString& text) { told += text; });
    screen_.actions()->openInMail();
    screen_.actions()->revealFile();
    EXPECT_EQ(told.size(), 2);
    EXPECT_TRUE(desktop_.opened.last().startsWith(QStringLiteral("file:///")));
}

TEST_F(MailListScreenTest, FiltersCanBeTakenFromTheMessage) {
    auto other = local("b", 2019);
    other.sender = "陈思远 <chen@a.example>";
    publish({local("a"), other, local("c")});
    screen_.selection()->select(0);
    screen_.actions()->filterBySender();
    EXPECT_EQ(screen_.filters()->query(), QStringLiteral("zhou@a.example"));
    settle();
    EXPECT_EQ(subjects(), texts({"a", "c"}));
    screen_.actions()->filterByYear();
    EXPECT_EQ(screen_.filters()->chips(), texts({"2021 年"}));
}

TEST_F(MailListScreenTest, DetailNamesCopiesAttachmentsAndAPreviewThatIsNone) {
    auto message = local("a");
    message.relatedMessageFileURLs =
        std::vector<FileURL>{message.fileURL, FileURL("/m/V10/A/全部邮件.mbox/1/Data/Messages/7.emlx"),
                             FileURL("/m/V10/A/全部邮件.mbox/1/Data/Messages/9.emlx")};
    message.preview = "正在加载正文预览...";
    message.attachments = {{Uuid::random(),
                            "图\xE2\x80\xAE"
                            "fdp.exe",
                            "application/pdf",
                            11'800'000,
                            {}},
                           {Uuid::random(), "b.zip", "application/zip", std::nullopt, {}}};
    publish({message});
    const ShownMessage& detail = screen_.detail()->shown();
    EXPECT_EQ(detail.copiesTitle, QStringLiteral("本机有 3 个文件保存着这封邮件"));
    EXPECT_EQ(detail.copiesPlaces, QStringLiteral("收件箱、全部邮件。"));
    EXPECT_EQ(detail.files.size(), 3);
    EXPECT_FALSE(detail.hasPreview);
    EXPECT_EQ(detail.place, QStringLiteral("a@a.example · 收件箱 · 1 MB"));
    EXPECT_EQ(detail.attachmentCount, 2);
    AttachmentListModel& attachments = *screen_.detail()->attachments();
    EXPECT_EQ(attachments.sumText(), QStringLiteral("已知 11.8 MB"));
    const auto role = [&](int row, int which) {
        return attachments.data(attachments.index(row), which).toString();
    };
    EXPECT_EQ(role(0, AttachmentListModel::NameRole), QStringLiteral("图fdp.exe"));
    EXPECT_EQ(role(0, AttachmentListModel::SymbolRole), QStringLiteral("shippingbox"));
    EXPECT_EQ(role(1, AttachmentListModel::SizeTextRole), QStringLiteral("大小待估算"));
}

TEST_F(MailListScreenTest, WhatLiesInAMessageOpensAsACopyAndAScriptIsOnlyShown) {
    platform_.runtimes = {"/usr/bin/python3"};
    const auto part = [](const char* name) {
        return fmt::format("--b\nContent-Disposition: attachment; filename=\"{}\"\n\nbytes\n", name);
    };
    const std::string mail =
        "Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: text/plain\n\nbody\n" +
        part("a.txt") + part("run.sh") + "--b--\n";
    auto message = local("7.emlx");
    home_.write("Library/Mail/V10/A/收件箱.mbox/7.emlx", fmt::format("{}\n{}", mail.size(), mail));
    message.preview = std::string(lazyPreviewPlaceholder);
    message.attachments = {{Uuid::random(), "a.txt", "text/plain", std::nullopt, {}},
                           {Uuid::random(), "run.sh", "SH", std::nullopt, {}}};
    publish({message});
    settle();
    AttachmentListModel& attachments = *screen_.detail()->attachments();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !attachments.lacksSizes(); }, 10'000))
        << "the worker knows them";
    for (const int row : {0, 1}) {
        screen_.attachments()->open(row);
        settle();
    }
    ASSERT_EQ(desktop_.opened.size(), 1);
    const QString copy = QUrl(desktop_.opened.front()).toLocalFile();
    EXPECT_EQ(platform::readFile(copy.toStdString()), "bytes");
    ASSERT_EQ(desktop_.revealed.size(), 1);
    EXPECT_TRUE(desktop_.revealed.front().endsWith(QStringLiteral("run.sh")));

    screen_.rowPreviews()->look(0, 5);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return screen_.list()->index(0).data(MessageListModel::PreviewRole) == QStringLiteral("body");
        },
        10'000));
}

TEST_F(MailListScreenTest, DetailWaitsForNoPreviewThatWontCome) {
    MailMessageRecord gone = local("gone.emlx");
    MailMessageRecord there = local("there.emlx");
    gone.preview = there.preview = std::string(lazyPreviewPlaceholder);
    publish({gone, there});
    screen_.showMessage(QString::fromStdString(there.id.str()));
    settle();
    EXPECT_TRUE(screen_.detail()->shown().preview.contains(QStringLiteral("没有可以显示")));
    std::filesystem::remove(gone.allMessageFileURLs().front().path().str());
    screen_.showMessage(QString::fromStdString(gone.id.str()));
    settle();
    EXPECT_TRUE(screen_.detail()->shown().preview.contains(QStringLiteral("已不在")));
    EXPECT_FALSE(screen_.detail()->shown().hasPreview);

    for (const std::size_t length : {279U, 280U}) {
        auto cut = local("a");
        cut.preview = std::string(length, 'x');
        const QString shown = ShownMessage::of(cut, false, {}).preview;
        EXPECT_EQ(shown.endsWith(u'…'), length == 280) << length;
    }
}

TEST_F(MailListScreenTest, APreviewThatWasReadAgainShowsInItsRowUntilTheNextScan) {
    MessageListModel& list = *screen_.list();
    const auto third = [&list](int row) {
        return list.index(row).data(MessageListModel::PreviewRole).toString();
    };
    auto garbled = local("b", 2020);
    garbled.preview = "\xEF\xBF\xBD\xEF\xBF\xBD";
    publish({local("a"), garbled});
    int told = 0;
    QObject::connect(&list, &MessageListModel::dataChanged, &list,
                     [&](const auto& first, const auto& last, const QList<int>& roles) {
                         if (first.row() <= 1 && last.row() >= 1 &&
                             roles.contains(MessageListModel::PreviewRole))
                             ++told;
                     });
    model_.mail().catalog.replacePreview(garbled.id, "读出来的正文");
    EXPECT_EQ(third(1), QStringLiteral("读出来的正文"));
    EXPECT_EQ(told, 1);
    EXPECT_NE(third(0), third(1));

    screen_.filters()->setAscending(true); // the same messages in another order
    settle();
    EXPECT_EQ(third(0), QStringLiteral("读出来的正文"));

    garbled.preview = "新的扫描读到的";
    publish({garbled});
    EXPECT_EQ(third(0), QStringLiteral("新的扫描读到的"));
}

TEST(MailListFilters, YearsReadAsRanges) {
    EXPECT_EQ(yearRangesText({2020}), QStringLiteral("2020 年"));
    EXPECT_EQ(yearRangesText({2015, 2018, 2019, 2020, 2022}), QStringLiteral("2015、2018–2020、2022 年"));
}

} // namespace
} // namespace corvane::testing
