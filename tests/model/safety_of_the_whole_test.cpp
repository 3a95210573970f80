// One question, asked of the whole model after faults, interruptions and changes by others: is everything
// that is called archived, proven or done there, byte for byte, in a connected archive? The answer comes from
// .emlx and .eml files that are read here by hand.
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "archive/checks/archive_rebuild.h"
#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "model/published_messages.h"
#include "records/archive_files/archive_index_file.h"
#include "support/faulty_file_layer.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string mailText(const std::string& header, const std::string& body) {
    return fmt::format("From: sender@example.org\n{}Subject: s\n\n{}\n", header, body);
}

// What the first line of an .emlx announces, or as much of it as there is.
std::string mailIn(const std::string& emlx) {
    return emlx.substr(emlx.find('\n') + 1, std::stoul(emlx));
}

std::string bodyOf(const std::string& mail) {
    return mail.substr(mail.find("\n\n"));
}

// Whatever an index says of them; links lead nowhere.
std::set<std::string> mailsBelow(const std::string& root) {
    std::set<std::string> mails;
    if (!fs::exists(root)) return mails;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const bool isFile = entry.symlink_status().type() == fs::file_type::regular;
        if (isFile && entry.path().extension() == ".eml") mails.insert(readWhole(entry.path()));
    }
    return mails;
}

// All bytes of each copy, or of one with the same body.
bool holds(const std::set<std::string>& archived, const MailMessageRecord& message) {
    std::set<std::string> bodies;
    std::vector<std::string> others;
    for (const FileURL& copy : message.allMessageFileURLs()) {
        const std::string mail = mailIn(readWhole(copy.path().str()));
        if (archived.contains(mail))
            bodies.insert(bodyOf(mail));
        else
            others.push_back(bodyOf(mail));
    }
    return std::ranges::all_of(others, [&](const std::string& body) { return bodies.contains(body); });
}

// A home with mail of all kinds and an archive folder.
struct World {
    TemporaryHome home;
    ScriptedPlatform platform{home};
    std::string root = home.at("归档");

    [[nodiscard]] MailMessageRecord message(const std::string& id, const std::vector<std::string>& mails,
                                            const std::string& announced = {}) const {
        static int files = 0;
        std::vector<FileURL> copies;
        for (const std::string& mail : mails) {
            const std::string size = announced.empty() ? std::to_string(mail.size()) : announced;
            const std::string path = fmt::format("Library/Mail/V10/a/{}.emlx", ++files);
            copies.emplace_back(home.write(path, size + "\n" + mail + (announced.empty() ? "<plist/>" : "")));
        }
        MailMessageRecord message;
        message.id = copies.front().path();
        message.fileURL = copies.front();
        message.relatedMessageFileURLs = copies;
        message.subject = "s";
        message.sender = "sender@example.org";
        message.date = Date(std::chrono::seconds(1'600'000'000));
        message.messageSize = 400;
        if (!id.empty()) message.messageIdentifier = SharedText(id);
        return message;
    }

    [[nodiscard]] MailMessageRecord plain(const std::string& id) const {
        return message(id, {mailText(fmt::format("Message-ID: <{}>\n", id), "body of " + id)});
    }

    [[nodiscard]] MessageList mailOfAllKinds() const {
        return {plain("a"),
                message("differing", {mailText("Message-ID: <differing>\n", "one"),
                                      mailText("Message-ID: <differing>\n", "two, longer")}),
                message("header", {mailText("Message-ID: <header>\n", "one body"),
                                   mailText("Message-ID: <header>\nX-Seen: yes\n", "one body")}),
                message("", {mailText("To: one\n", "first twin")}),
                message("", {mailText("To: two\n", "second twin")}),
                message("cut", {mailText("Message-ID: <cut>\n", "the beginning")}, "9000"),
                plain("x"),
                plain("x#v1")};
    }
};

// One life of the program over what lies on the disk.
class Session {
  public:
    Session(const World& world, const MessageList& messages,
            platform::FileLayer& files = platform::posixFileLayer())
      : root_(world.root)
      , context_(world.platform, files)
      , model_(context_) {
        model_.library().bodyTexts.setAutomaticRepair(false);
        waitUntilIdle(context_.tasks);
        publishMessages(model_.mail().catalog, messages);
        model_.archiving().destinations.setTransferDestination(root_);
        waitUntilIdle(context_.tasks);
    }

    // Whether it had a result.
    bool archive() {
        bool hasResult = false;
        model_.archiving().ticks.selectAllArchiveCandidates();
        waitUntilIdle(context_.tasks);
        model_.archiveSelectedEmails([&](const auto& outcome) { hasResult = outcome.has_value(); });
        waitUntilIdle(context_.tasks);
        return hasResult;
    }

    // As somebody does whom the window or a message asks for it: what couldn't be read is looked at again.
    void proveAndArchive() {
        archive();
        model_.archiving().proof.prove({});
        waitUntilIdle(context_.tasks);
        archive();
    }

    // The question.
    void expectItsWordIsTrue() {
        const MessageCatalog& catalog = model_.mail().catalog;
        const std::set<std::string> archived = mailsBelow(root_);
        std::int64_t archivedCount = 0;
        for (const MailMessageRecord& message : *catalog.messages()) {
            const bool isArchived = catalog.archivedMessageIDs()->contains(message.id);
            const bool isProven = catalog.availability().proofs->provenIDs->contains(message.id);
            const bool isListed =
                isOffered(message) || catalog.availability().troubledIDs->contains(message.id);
            archivedCount += isArchived ? 1 : 0;
            if (!isArchived && !isProven && isListed) continue;
            EXPECT_TRUE(holds(archived, message))
                << message.messageIdentifier.value_or("") << (isArchived ? " archived" : "")
                << (isProven ? " proven" : "") << (isListed ? "" : " not listed");
        }
        EXPECT_EQ(safety().archived, archivedCount);
        EXPECT_LE(safety().proofs.proven, archivedCount);
    }

    DeletionSafety safety() { return model_.deletionSafety({}); }

    [[nodiscard]] bool knows(const std::string& baseID) {
        return model_.library().loader.archivedEmailBaseIDs()->contains(SharedText(baseID));
    }

  private:
    bool isOffered(const MailMessageRecord& message) {
        const SharedMessageList candidates = model_.archiving().candidates.archiveCandidates();
        return std::ranges::find(*candidates, message.id, &MailMessageRecord::id) != candidates->end();
    }

    std::string root_;
    ModelContext context_;
    CorvaneViewModel model_;
};

struct Injury {
    const char* name;
    Effect effect;
    int error;
};

constexpr std::array injuries{Injury{"EIO", Effect::fail, EIO}, Injury{"ENOSPC", Effect::fail, ENOSPC},
                              Injury{"EIO for good", Effect::failFromHere, EIO},
                              Injury{"ENOSPC for good", Effect::failFromHere, ENOSPC},
                              Injury{"power loss", Effect::crash, EIO}};

bool changesOrReads(FileOperation operation) {
    constexpr std::array hurt{FileOperation::write, FileOperation::read,     FileOperation::makeDirectory,
                              FileOperation::sync,  FileOperation::fullSync, FileOperation::rename,
                              FileOperation::unlink};
    return std::ranges::find(hurt, operation) != hurt.end();
}

// Which of the operations in the archive of a run that goes well change or read it; from 1 on. The others are
// hurt by the tests of the archiver, one by one.
std::vector<std::size_t> operationsToHurt(const World& world, const MessageList& messages) {
    FaultyFileLayer files;
    Session session(world, messages, files);
    const std::size_t before = files.operationCount();
    session.archive();
    std::vector<std::size_t> wanted;
    std::size_t at = 0;
    const auto record = files.record();
    for (std::size_t position = before; position < record.size(); ++position) {
        if (record[position].path.find(world.root) == std::string::npos) continue;
        ++at;
        if (changesOrReads(record[position].operation)) wanted.push_back(at);
    }
    return wanted;
}

void runInjured(const World& world, const MessageList& messages, const Injury& injury, std::size_t at) {
    FaultyFileLayer files;
    Session session(world, messages, files);
    files.inject(
        {.at = at, .effect = injury.effect, .operation = {}, .error = injury.error, .path = world.root});
    session.archive();
    if (files.hasCrashed())
        files.losePower();
    else
        session.expectItsWordIsTrue();
}

class SafetyOfTheWhole : public ::testing::Test {
  protected:
    SafetyOfTheWhole() { provideEventLoop(); }
};

TEST_F(SafetyOfTheWhole, NeedsNoSecondLookAtWhatARunHasWritten) {
    const World world;
    Session session(world, world.mailOfAllKinds());
    EXPECT_TRUE(session.archive());
    session.expectItsWordIsTrue();
    EXPECT_EQ(session.safety().proofs.proven, 7);
    EXPECT_EQ(session.safety().proofs.incomplete, 1);
}

TEST_F(SafetyOfTheWhole, HoldsWhereverARunIsHurtAndTheNextRunHeals) {
    std::size_t number = 0;
    const World sound;
    for (const std::size_t at : operationsToHurt(sound, sound.mailOfAllKinds())) {
        const World world;
        const MessageList messages = world.mailOfAllKinds();
        const Injury& injury = injuries[number++ % injuries.size()];
        SCOPED_TRACE(fmt::format("{} at {}", injury.name, at));
        runInjured(world, messages, injury, at);
        Session next(world, messages);
        next.expectItsWordIsTrue();
        next.proveAndArchive();
        next.expectItsWordIsTrue();
        const DeletionSafety safety = next.safety();
        EXPECT_EQ(safety.proofs.incomplete, 1);
        EXPECT_EQ(safety.archived, 7);
        EXPECT_EQ(safety.proofs.proven, 7);
        if (HasFailure()) return;
    }
}

// Two mails with one id, and one whose copy has changed behind its archived file: what a record says of the
// one is no word on the other.
TEST_F(SafetyOfTheWhole, OfMailWithTheIdOfAnArchivedOneNothingIsSaidBeforeItIsWritten) {
    const World world;
    const MessageList twins{world.message("", {mailText("To: one\n", "first")}),
                            world.message("", {mailText("To: two\n", "second")})};
    const MailMessageRecord changed = world.plain("changed");
    Session(world, {changed}).archive();
    const std::string later = mailText("Message-ID: <changed>\n", "rewritten");
    std::ofstream(changed.fileURL.path().str()) << later.size() << '\n' << later << "<plist/>";
    FaultyFileLayer files;
    files.inject({.effect = Effect::failFromHere, .operation = FileOperation::write, .path = "变体"});
    const MessageList all{twins[0], twins[1], changed};
    for (const bool isHurt : {true, false}) {
        Session session(world, all, isHurt ? files : platform::posixFileLayer());
        session.proveAndArchive();
        session.expectItsWordIsTrue();
        EXPECT_EQ(session.safety().archived, isHurt ? 1 : 3);
    }
}

// What somebody else does to an archive of which no original is left, while or before a run adds to it.
struct Change {
    const char* name;
    std::size_t write = 0; // the write of the run before which it happens; 0: before the run
    std::function<void(const World&)> happen;
    std::function<void(const World&)> repair{};
    const char* then = nullptr; // an id that has to be known afterwards
};

void swapForLink(const std::string& folder, const std::string& elsewhere) {
    fs::rename(folder, elsewhere);
    fs::create_directory_symlink(elsewhere, folder);
}

void swapBack(const std::string& folder, const std::string& elsewhere) {
    fs::remove_all(folder);
    fs::rename(elsewhere, folder);
}

void addAsAnotherWriter(const World& world) {
    const std::string path = world.home.at("归档/archive-index.json");
    EmailArchiveIndex index = *readArchiveIndex(path);
    ArchivedEmailRecord record = index.records.front();
    record.id = "mid:theirs";
    record.messageIdentifier = SharedText("theirs");
    record.emlRelativePath = "theirs.eml";
    world.home.write("归档/theirs.eml", readWhole(world.root + "/" + index.records[0].emlRelativePath.str()));
    index.records.push_back(std::move(record));
    fs::remove(path);
    world.home.write("归档/archive-index.json", encodeArchiveIndex(index));
}

const std::vector<Change> changes{
    {"index damaged", 0, [](const World& world) { world.home.write("归档/archive-index.json", "{"); },
     [](const World& world) { rebuildArchive(world.root); }},
    {"index of another writer", 2, &addAsAnotherWriter, {}, "mid:theirs"},
    {"another folder at the root", 2,
     [](const World& world) {
         fs::rename(world.root, world.home.at("away"));
         fs::create_directory(world.root);
     },
     [](const World& world) { swapBack(world.root, world.home.at("away")); }},
    {"a link at the root", 2, [](const World& world) { swapForLink(world.root, world.home.at("away")); },
     [](const World& world) { swapBack(world.root, world.home.at("away")); }},
    {"a link at a folder", 2,
     [](const World& world) { swapForLink(world.root + "/2020", world.home.at("away")); },
     [](const World& world) { swapBack(world.root + "/2020", world.home.at("away")); }},
};

// An archive of three messages whose originals are gone, and two more to be archived.
struct OnlyArchivedMail {
    OnlyArchivedMail() {
        const MessageList old{world.plain("old1"), world.plain("old2"), world.plain("old3")};
        Session(world, old).archive();
        for (const MailMessageRecord& message : old) fs::remove(message.fileURL.path().str());
        archived = mailsBelow(world.root);
    }

    void expectNothingIsLost(const std::string& also = "mid:old1") const {
        EXPECT_EQ(archived.size(), 3U);
        EXPECT_TRUE(std::ranges::includes(mailsBelow(world.root), archived));
        Session next(world, added);
        next.expectItsWordIsTrue();
        next.proveAndArchive();
        next.expectItsWordIsTrue();
        for (const std::string& id : {"mid:old1"s, "mid:old2"s, "mid:old3"s, also})
            EXPECT_TRUE(next.knows(id)) << id;
        EXPECT_TRUE(next.safety().isDeletable());
    }

    World world;
    std::set<std::string> archived;
    MessageList added{world.plain("new1"), world.plain("new2")};
};

TEST_F(SafetyOfTheWhole, OfMailThatOnlyTheArchiveHasOutlivesWhatOthersDoToIt) {
    for (const Change& change : changes) {
        SCOPED_TRACE(change.name);
        const OnlyArchivedMail mail;
        const World& world = mail.world;
        FaultyFileLayer files;
        std::atomic<std::size_t> writes = 0;
        files.observe([&](const RecordedOperation& operation) {
            const bool isWrite = operation.operation == FileOperation::write;
            if (isWrite && operation.path.starts_with(world.root) && ++writes == change.write)
                change.happen(world);
        });
        if (change.write == 0) change.happen(world);
        {
            Session session(world, mail.added, files);
            session.archive();
            session.expectItsWordIsTrue();
        }
        EXPECT_GE(writes, change.write);
        if (change.repair) change.repair(world);
        mail.expectNothingIsLost(change.then ? change.then : "mid:old1");
    }
}

TEST_F(SafetyOfTheWhole, OfMailThatOnlyTheArchiveHasOutlivesAnyFaultOfALaterRun) {
    std::size_t number = 0;
    const OnlyArchivedMail sound;
    for (const std::size_t at : operationsToHurt(sound.world, sound.added)) {
        const OnlyArchivedMail mail;
        const Injury& injury = injuries[number++ % injuries.size()];
        SCOPED_TRACE(fmt::format("{} at {}", injury.name, at));
        runInjured(mail.world, mail.added, injury, at);
        mail.expectNothingIsLost();
        if (HasFailure()) return;
    }
}

} // namespace
} // namespace corvane::testing
