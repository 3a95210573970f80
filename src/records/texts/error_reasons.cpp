#include "records/texts/error_reasons.h"

#include <cerrno>

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
    case EMFILE:
    case ENFILE:
        return "打开的文件太多";
    case EINVAL:
    case ENOTSUP:
        return "这个位置不支持这样的操作";
    case EILSEQ:
        return "名称含有这个磁盘不接受的字符";
    case ENOMEM:
        return "内存不足";
    case ESTALE:
    case ENOTCONN:
    case EHOSTDOWN:
    case ENETDOWN:
    case EHOSTUNREACH:
    case ENETUNREACH:
        return "网络位置已断开";
    case ENOTEMPTY:
        return "文件夹不是空的";
    case EXDEV:
        return "两个位置不在同一个磁盘上";
    case EPIPE:
    case ECONNRESET:
        return "对方已经关闭";
    default:
        return fmt::format("系统错误 {}", errorNumber);
    }
}

} // namespace corvane
