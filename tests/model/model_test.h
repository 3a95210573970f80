// What tests of the model share: a home of their own with a platform by script, and the wait for everything
// that was started.
#pragma once

#include <chrono>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include "model/model_context.h"
#include "model/tasks/task_runner.h"
#include "support/scripted_platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {

// The event loop of a test program. Made by the first test that needs it.
inline void provideEventLoop() {
    static int argumentCount = 1;
    static char name[] = "test_model";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
}

// Spins the event loop until every job and step has ended.
inline void waitUntilIdle(TaskRunner& tasks) {
    QEventLoop loop;
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&tasks, &TaskRunner::idle, &loop, &QEventLoop::quit);
    guard.start(std::chrono::seconds(60));
    while (!tasks.isIdle() && guard.isActive()) loop.exec();
    ASSERT_TRUE(tasks.isIdle()) << "the started work doesn't end";
    QCoreApplication::processEvents();
}

class ModelTest : public ::testing::Test {
  protected:
    ModelTest() { provideEventLoop(); }

    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
};

} // namespace corvane::testing
