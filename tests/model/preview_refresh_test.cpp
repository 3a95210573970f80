#include "model/mail/messages/preview_refresh.h"

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <vector>

#include "model/model_test.h"
#include "records/texts/preview_placeholders.h"

namespace corvane::testing {
namespace {

class PreviewRefreshTest : public ModelTest {
  protected:
    PreviewRefreshTest() {
        previews_.setPreviewsShown(true);
        QObject::connect(&catalog_, &MessageCatalog::previewReplaced, [this] { ++replaced_; });
    }

    // Each message: an id, its preview and the texts of its files, "" for a file that isn't there.
    void addMessage(const std::string& id, std::string_view preview, const std::vector<std::string>& files) {
        MailMessageRecord message;
        message.id = id;
        message.preview = preview;
        std::vector<FileURL> urls;
        for (const std::string& text : files) {
            const std::string name = "mail/" + id + std::to_string(urls.size()) + ".emlx";
            urls.emplace_back(text.empty() ? home_.at(name) : home_.write(name, text));
        }
        message.fileURL = urls.front();
        urls.erase(urls.begin());
        message.relatedMessageFileURLs = urls;
        messages_.push_back(message);
    }

    void publish() {
        auto list = std::make_shared<const MessageList>(messages_);
        catalog_.setMessages(MessageSet::make(list, true), {});
        waitUntilIdle(context_.tasks);
    }

    std::string refreshed(const std::string& id) {
        previews_.refreshPreviewIfNeeded(id);
        waitUntilIdle(context_.tasks);
        return catalog_.messageByID(id)->preview.str();
    }

    ModelContext context_{platform_};
    MessageCatalog catalog_{context_, [] { return AvailabilityInputs(); }};
    std::function<std::string(const FileURL&)> worker_ = [](const FileURL&) -> std::string {
        throw std::runtime_error("no worker");
    };
    PreviewRefresh previews_{context_, catalog_, nullptr,
                             [this](const FileURL& file, const std::stop_token&) { return worker_(file); }};
    MessageList messages_;
    int replaced_ = 0;
};

TEST_F(PreviewRefreshTest, Preview_ComesFromTheFirstFileThatGivesASoundOne) {
    const std::string mail = "50\nSubject: x\nContent-Type: text/plain\n\nHello from the message.\n";
    addMessage("sound", "A text that is as it should be.", {mail});
    addMessage("lazy", lazyPreviewPlaceholder, {"", mail});
    addMessage("gone", lazyPreviewPlaceholder, {""});
    addMessage("empty", lazyPreviewPlaceholder, {"10\nSubject: x\n\n\n"});
    publish();
    EXPECT_EQ(refreshed("sound"), "A text that is as it should be.");
    EXPECT_EQ(refreshed("gone"), lazyPreviewPlaceholder);
    EXPECT_EQ(refreshed("empty"), lazyPreviewPlaceholder);
    EXPECT_EQ(replaced_, 0);
    EXPECT_TRUE(refreshed("lazy").starts_with("Hello from the message."));
    EXPECT_EQ(replaced_, 1);
    worker_ = [](const FileURL&) { return std::string(lazyPreviewPlaceholder); };
    publish();
    EXPECT_TRUE(refreshed("lazy").starts_with("Hello")) << "what the worker gives is no better than before";
    worker_ = [](const FileURL&) { return std::string("The worker's words."); };
    publish();
    EXPECT_EQ(catalog_.messageByID("lazy")->preview, lazyPreviewPlaceholder) << "a new generation";
    EXPECT_EQ(refreshed("lazy"), "The worker's words.");
    previews_.refreshPreviewIfNeeded(std::nullopt);
    previews_.refreshPreviewIfNeeded("unknown");
    EXPECT_TRUE(context_.tasks.isIdle());
}

TEST_F(PreviewRefreshTest, Preview_OfAnEarlierSelectionIsGivenUp) {
    addMessage("first", lazyPreviewPlaceholder, {"1\nx\n"});
    addMessage("second", lazyPreviewPlaceholder, {"1\nx\n"});
    publish();
    std::promise<void> reached;
    std::promise<void> goOn;
    std::atomic<int> calls = 0;
    worker_ = [&](const FileURL& file) {
        if (++calls == 1) {
            reached.set_value();
            goOn.get_future().wait();
        }
        return "text of " + std::string(file.lastPathComponent());
    };
    previews_.refreshPreviewIfNeeded("first");
    previews_.refreshPreviewIfNeeded("first");
    reached.get_future().wait();
    previews_.refreshPreviewIfNeeded("second");
    goOn.set_value();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(catalog_.messageByID("first")->preview, lazyPreviewPlaceholder);
    EXPECT_EQ(catalog_.messageByID("second")->preview, "text of second0.emlx");
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(refreshed("first"), "text of first0.emlx") << "and may be tried again";
}

} // namespace
} // namespace corvane::testing
