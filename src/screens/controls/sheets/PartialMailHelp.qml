// How mail that Apple Mail holds only in part is brought in, and what it counts as until then.
import QtQuick
import Corvane

ConfirmSheet {
    objectName: "partialMailHelp"
    title: "补全 Mail 里只有一部分的邮件"
    line: "在 Mail->设置->账户里，将「下载附件」改为「全部」。等 Mail 同步完，再回来更新 Mail 数据，这些邮件就可以归档。\n\n"
        + "补全之前它们不算已归档，也不会列为可以删除；按日期段删除会连它们一起删除。"
    acceptText: "好"
    rejectText: ""
}
