#include "records/texts/error_reasons.h"

#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace corvane {

std::string systemErrorReason(int errorNumber) {
    switch (errorNumber) {
    case EACCES:
    case EPERM:
        return "没有访问权限";
    case EROFS:
        return "磁盘是只读的";
    case ENOSPC:
    case EDQUOT:
        return "磁盘空间不足";
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return "位置不存在或磁盘未连接";
    case ENOTDIR:
    case EEXIST:
        return "同名文件占用了该位置";
    case EISDIR:
        return "同名文件夹占用了该位置";
    case ENAMETOOLONG:
        return "路径过长";
    case ELOOP:
        return "该位置是指向别处的链接";
    case ETIMEDOUT:
        return "目标位置无响应";
    case EBUSY:
        return "正被另一个程序使用";
    case EFBIG:
        return "文件过大";
    case EIO:
        return "磁盘读写出错";
    default:
        return fmt::format("系统错误（{}）", std::generic_category().message(errorNumber));
    }
}

} // namespace corvane
