#include "worker/worker_error.h"

namespace corvane {

namespace {

std::string describe(WorkerError::Kind kind, const std::string& detail) {
    switch (kind) {
    case WorkerError::Kind::launchFailed:
        return "启动邮件处理 worker 失败：" + detail;
    case WorkerError::Kind::invalidResponse:
        return "邮件处理 worker 返回异常：" + detail;
    case WorkerError::Kind::workerFailed:
        return "邮件处理 worker 执行失败：" + detail;
    case WorkerError::Kind::workerNotFound:
        return "没有找到内置邮件处理 worker。";
    case WorkerError::Kind::pythonNotFound:
        break;
    }
    return "没有找到 Python 运行时。发布版本会内置运行时；当前开发版本需要本机 Python。";
}

} // namespace

WorkerError::WorkerError(Kind kind, std::string detail)
  : std::runtime_error(describe(kind, detail))
  , kind_(kind)
  , detail_(std::move(detail)) {}

std::string WorkerError::errorDescription() const {
    return describe(kind_, detail_);
}

} // namespace corvane
