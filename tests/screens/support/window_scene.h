// A whole window's model over a home of its own, filled with mail that is made up, to be looked at or driven.
#pragma once

#include <chrono>
#include <latch>

#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include "model/model_test.h"
#include "screens/shell/window_model.h"

namespace corvane::testing {

class WindowScene {
  public:
    WindowScene();

    // Seventeen years in four accounts, the older ones archived where there is a destination.
    enum class Destination { chosen, none };
    void fill(Destination destination = Destination::chosen);

    // Waits for the figures of the present state, which are counted in the background.
    void showLatest();

    // Everything that was started has ended and is shown.
    void settle();

    [[nodiscard]] ScriptedPlatform& platform() { return platform_; }

    [[nodiscard]] TemporaryHome& home() { return home_; }

    [[nodiscard]] CorvaneViewModel& model() { return model_; }

    [[nodiscard]] WindowModel& window() { return window_; }

    // The row of the tree with that title; the first from `from` on.
    [[nodiscard]] int treeRow(const QString& title, int from = 0);

    // Holds a job of the model until it is released. Any thread.
    void waitForRelease();
    void release();

  private:
    static ModelContext& withAccounts(ModelContext& context);

    std::latch released_{1};
    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
    ModelContext context_{platform_};
    CorvaneViewModel model_{withAccounts(context_)};
    WindowModel window_{model_, std::chrono::milliseconds(0)};
};

} // namespace corvane::testing
