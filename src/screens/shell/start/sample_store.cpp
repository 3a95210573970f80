#include "screens/shell/start/sample_store.h"

#include <exception>

#include "model/mail/scan/sample_mail_maker.h"
#include "platform/paths.h"

namespace corvane {

namespace {

struct MakeJob {
    const platform::Platform& platform;
    std::string maker;
    std::string home;
};

// The user's text; empty when the samples are there.
QString failureOfMaking(const MakeJob& job, const TaskHandle&) {
    try {
        makeSampleMail(job.platform, job.maker, job.home);
    } catch (const std::exception& error) {
        return QStringLiteral("没能生成示例邮件：") + QString::fromLocal8Bit(error.what()).trimmed();
    }
    return {};
}

} // namespace

SampleStore::SampleStore(ModelContext& context, std::vector<std::string> makers, QObject* parent)
  : QObject(parent)
  , context_(context)
  , task_(context.tasks) {
    look(std::move(makers));
}

bool SampleStore::open() const {
    return platform::parentPath(platform::parentPath(context_.mailRootPath)).ends_with("/sample-home");
}

void SampleStore::make() {
    if (busy_ || !offered()) return;
    busy_ = true;
    failure_.clear();
    Q_EMIT changed();
    task_.start(TaskPriority::userInitiated, MakeJob{context_.platform, maker_, sampleHome()},
                &failureOfMaking, [this](const QString& failure) {
                    busy_ = false;
                    failure_ = failure;
                    Q_EMIT changed();
                    if (failure.isEmpty()) Q_EMIT ready(QString::fromStdString(sampleHome()));
                });
}

std::string SampleStore::sampleHome() const {
    return context_.support.filePath("sample-home");
}

void SampleStore::look(std::vector<std::string> makers) {
    struct Job {
        const platform::Platform& platform;
        std::string mailRoot;
        std::vector<std::string> makers;
    };

    task_.start(
        TaskPriority::utility, Job{context_.platform, context_.mailRootPath, std::move(makers)},
        [](const Job& job, const TaskHandle&) {
            return findSampleMailMaker(job.platform, job.mailRoot, job.makers);
        },
        [this](std::string maker) {
            maker_ = std::move(maker);
            Q_EMIT changed();
        });
}

} // namespace corvane
