#include "pictures/picture_states.h"

#include <optional>

#include <QTest>

#include "pictures/picture_scenes.h"

namespace corvane::testing {

namespace {

// For the README: of mail without oddities, and what is newer can be ticked.
void archiveOldMailOnly(WindowScene& scene) {
    makeStoreOf(scene, QStringLiteral("2500"), QStringLiteral("--no-odd"));
    scene.window().home()->scan()->update();
    scene.settle();
    archiveUpTo2021(scene);
    scene.model().mail().filters.set(&CandidateFilters::transferMaxYear, std::nullopt);
    scene.platform().runtimes = {"/usr/bin/python3"};
    scene.model().library().bodyTexts.rebuildBodyTextIndex(false);
    scene.settle();
}

void tickOldestYear(WindowScene& scene, QQuickWindow&) {
    auto& tree = *scene.window().home()->tree();
    tree.toggleTick(1);
    tree.setExpanded(2, true);
    tree.toggleTick(3);
    scene.settle();
    QTest::qWait(600);
}

void lookAtLibrary(WindowScene& scene, QQuickWindow& window) {
    go(scene, window, Qt::Key_3);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, QPoint(400, 310));
    QTest::qWait(1500);
    scene.settle();
    QTest::qWait(600);
}

// The first message of the sample mail that has any.
void lookAtAttachments(WindowScene& scene, QQuickWindow& window) {
    lookAtMail(scene, window);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, QPoint(640, 385));
    QTest::qWait(1500);
    scene.settle();
    QTest::qWait(600);
}

} // namespace

// The five screens over one archive of mail without oddities.
const std::vector<PictureState>& readmeStates() {
    static const std::vector<PictureState> all = {
        {"home", archiveOldMailOnly, tickOldestYear},   {"archived", archiveOldMailOnly, checkArchived},
        {"library", archiveOldMailOnly, lookAtLibrary}, {"mails", archiveOldMailOnly, lookAtAttachments},
        {"space", archiveOldMailOnly, lookAtSpace},
    };
    return all;
}

} // namespace corvane::testing
