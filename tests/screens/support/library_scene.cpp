#include "screens/support/library_scene.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <string_view>
#include <vector>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <fmt/format.h>

#include "locations/archive_samples.h"

namespace corvane::testing {

namespace {

struct Mail {
    std::string id;
    std::string after; // the id of what it answers
    std::string subject;
    std::string sender;
    std::string minute; // "2021-06-09 17:42"
    std::string body;
    std::vector<std::string> attachments{};
    bool isOnDisk = false;
    int kibibytes = 40;
};

constexpr std::string_view longBody = R"(志远：

江湾小学二期的施工图第三版已经改好，主要调整有三处：
1. 北侧疏散楼梯加宽到 1.65 米，消防那边口头同意了；
2. 图书角改到二层东端，结构柱网不动；
3. 雨棚按你上周说的，改为钢结构加夹胶玻璃。

请在周四下班前看一遍，没问题我就发给施工方报价。合同补充协议的草稿也一并附上，第 4 条的付款节点请重点看。

--
周明哲　主创建筑师
恒泰建筑设计有限公司　第二设计所
电话：021-5550 0142　邮箱：mingzhe.zhou@hengtai.example

发件人：林志远
收件人：周明哲；陈思远；刘晓彤；赵建国；王雨桐；张一；李二；王三；赵四；钱五
主题：江湾小学改造二期施工图

明哲，第二版我看完了。楼梯净宽偏紧，雨棚也别用混凝土板了；
另外甲方催补充协议，麻烦把付款节点一起改掉。
志远
)";

const std::vector<Mail>& mails() {
    static const std::string topic = "关于江湾小学改造二期施工图的回复";
    static const std::vector<Mail> all = {
        {"j4",
         "j3",
         "Re: " + topic,
         "周明哲 <mingzhe.zhou@hengtai.example>",
         "2021-06-09 17:42",
         std::string(longBody),
         {"江湾小学二期施工图_第三版.pdf", "合同补充协议（草稿）.docx", "工程量清单.xlsx", "现场照片-03.jpg"},
         false,
         18'600},
        {"j3", "j2", "Re: " + topic, "林志远 <zhiyuan.lin@hengtai.example>", "2021-06-08 09:12",
         "明哲，第二版我看完了。楼梯净宽偏紧，雨棚也别用混凝土板了。"},
        {"j2",
         "j1",
         "Re: " + topic,
         "陈思远 <siyuan.chen@hengtai.example>",
         "2021-06-03 16:20",
         "志远、明哲：甲方今天来电，希望六月底前定稿。",
         {"来电记录.txt"},
         false,
         3'600},
        {"j1",
         "",
         topic,
         "周明哲 <mingzhe.zhou@hengtai.example>",
         "2021-05-27 11:35",
         "志远：第二版施工图已按会上意见修改，请看附件。",
         {"第二版.pdf", "说明.txt", "表.xlsx"},
         true,
         9'200},
        {"h2", "h1", "会议纪要：图书角方案讨论（第 4 次）", "刘晓彤 <xt@hengtai.example>", "2021-06-02 18:02",
         "各位：纪要见附件，请周五前反馈。"},
        {"h1", "", "会议纪要：图书角方案讨论", "周明哲 <mingzhe.zhou@hengtai.example>", "2021-05-20 18:02",
         "第一次讨论的纪要。"},
        {"t1",
         "",
         "投标文件电子版，请查收",
         "城南招标代理 <bid@chengnan.example>",
         "2021-06-01 08:45",
         "投标文件电子版见附件。",
         {"投标文件.pdf", "签收单.docx"},
         false,
         23'900},
        {"p1",
         "",
         "施工许可证补正材料通知",
         "区行政服务中心 <service@gov.example>",
         "2021-05-28 16:40",
         "请于五个工作日内补正下列材料。",
         {"清单.pdf"},
         false,
         540},
        {"y1", "", "预订确认：6 月 15 日入住 2 晚", "云栖酒店 <booking@hotel.example>", "2021-05-27 12:03",
         "感谢预订。"},
        {"m1",
         "",
         "体检报告领取通知",
         "市第三人民医院体检中心 <tj@hospital.example>",
         "2021-05-21 15:18",
         "您的体检报告已出。",
         {"须知.pdf"},
         true,
         1'300},
        {"b1",
         "",
         "生日快乐！",
         "陈静 <jing.chen@mail.example>",
         "2021-05-20 08:02",
         "生日快乐！照片在附件里。",
         {"生日照片-01.png", "生日照片-02.png"},
         false,
         2'700},
        {"s1",
         "",
         "江湾小学改造二期 · 补充协议草稿",
         "陈思远 <siyuan.chen@hengtai.example>",
         "2020-06-08 10:05",
         "草稿请看附件。",
         {"草稿一.docx", "草稿二.docx"},
         false,
         12'400},
        {"s2",
         "",
         "用印申请单（6 月第一周）",
         "行政部 <office@hengtai.example>",
         "2020-06-01 09:20",
         "江湾小学补充协议一式四份，骑缝章；框架协议补页一份。",
         {"用印.pdf"},
         false,
         310},
        {"s4", "", "归档目录：2019 年合同", "行政部 <office@hengtai.example>", "2019-12-31 16:00",
         "36. 城西；37. 东城幼儿园补充协议（一）；38. 补充协议（二）；39. 其它。"},
        {"s5",
         "",
         "回复：付款节点",
         "赵建国 <zhao@client.example>",
         "2019-11-14 20:48",
         "按补充协议第 4 条，主体封顶后十五个工作日内支付第二笔款。",
         {},
         true},
        {"s6",
         "",
         "补充协议（二）会签意见",
         "法务 沈洁 <law@hengtai.example>",
         "2019-10-30 17:09",
         "意见见附件。",
         {"会签意见.pdf"},
         false,
         1'900},
    };
    return all;
}

QByteArray picture(const char* format) {
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(QColor(0xB9CFE8));
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xF3DFA0));
    painter.drawEllipse(QPoint(470, 120), 50, 50);
    painter.setBrush(QColor(0x6B8F71));
    painter.drawPolygon(QPolygon({{0, 480}, {200, 220}, {330, 360}, {440, 280}, {640, 480}}));
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}

QByteArray contentOf(const std::string& name) {
    if (name.ends_with(".jpg")) return picture("JPG");
    return name.ends_with(".png") ? picture("PNG") : QByteArray("made up");
}

std::string emlOf(const Mail& mail) {
    std::string text =
        fmt::format("Message-ID: <{}@x.example>\nSubject: {}\nFrom: {}\nTo: 林志远; 陈思远; 刘晓彤\n"
                    "Cc: 赵建国; 王雨桐\nMIME-Version: 1.0\n"
                    "Content-Type: multipart/mixed; boundary=\"=edge=\"\n\n--=edge=\n"
                    "Content-Type: text/plain; charset=utf-8\n\n{}\n",
                    mail.id, mail.subject, mail.sender, mail.body);
    for (const std::string& name : mail.attachments)
        text += fmt::format("--=edge=\nContent-Type: application/octet-stream; name=\"{0}\"\n"
                            "Content-Disposition: attachment; filename=\"{0}\"\n"
                            "Content-Transfer-Encoding: base64\n\n{1}\n",
                            name, contentOf(name).toBase64().toStdString());
    return text + "--=edge=--\n";
}

Date dateOf(const std::string& minute) {
    const auto number = [&](std::size_t at, std::size_t digits) {
        return std::stoi(minute.substr(at, digits));
    };
    const auto day = std::chrono::year(number(0, 4)) / number(5, 2) / number(8, 2);
    return std::chrono::sys_days(day) + std::chrono::hours(number(11, 2)) +
           std::chrono::minutes(number(14, 2));
}

ArchivedEmailRecord recordOf(const Mail& mail) {
    ArchivedEmailRecord record = sampleRecord("mid:" + mail.id + "@x.example");
    if (!mail.after.empty()) record.referencedMessageIdentifiers = {SharedText(mail.after + "@x.example")};
    record.subject = mail.subject;
    record.sender = mail.sender;
    record.recipients = "林志远；陈思远；刘晓彤";
    record.ccRecipients = "赵建国；王雨桐";
    record.date = dateOf(mail.minute);
    record.mailbox = mail.isOnDisk ? "imap://A/INBOX" : "imap://A/%E5%AE%A2%E6%88%B7%E5%BE%80%E6%9D%A5";
    record.accountIdentifier = SharedText("imap://A");
    record.accountName = SharedText("zhiyuan.lin@hengtai.example");
    record.sizeBytes = std::int64_t{mail.kibibytes} * 1'000;
    for (const std::string& name : mail.attachments) record.attachmentNames.emplace_back(name);
    record.emlRelativePath = "2021/" + mail.id + ".eml";
    return record;
}

// A mail of an ordinary year, of no thread.
Mail oldMail(int year, int number) {
    static constexpr std::array topics = {"材料样板确认单", "现场照片与整改意见", "发票与报销单",
                                          "图纸会审通知", "报价单"};
    const auto letter = [](int of) { return static_cast<char>('A' + of % 26); };
    Mail mail;
    mail.id = fmt::format("o{}-{}", year, number);
    mail.subject = fmt::format("{}（{}{}{}）", topics[static_cast<std::size_t>(number) % topics.size()],
                               letter(year), letter(number / 26), letter(number));
    mail.sender = number % 3 == 0 ? "财务部 <f@x.example>" : "王雨桐 <yt@x.example>";
    mail.minute = fmt::format("{}-{:02}-{:02} 10:{:02}", year, 1 + number % 12, 1 + number % 27, number % 60);
    mail.body = "请查收。";
    mail.isOnDisk = number % 5 == 0;
    return mail;
}

} // namespace

LibraryScene fillLibrary(WindowScene& scene) {
    std::vector<Mail> all = mails();
    for (int year = 2009; year <= 2020; ++year) {
        const int count = 40 - (year - 2015) * (year - 2015);
        for (int number = 0; number < count; ++number) all.push_back(oldMail(year, number));
    }
    scene.platform().runtimes = {"/usr/bin/python3"};
    scene.platform().plugIn("归档盘 A");
    const std::string cloud = "Library/CloudStorage/Nutstore-linzy@mail.example/邮件归档";
    const std::string disk = "Volumes/归档盘 A/邮件归档";
    EmailArchiveIndex inCloud{Date(std::chrono::seconds(1)), Date(std::chrono::seconds(2)), {}};
    EmailArchiveIndex onDisk{Date(std::chrono::seconds(3)), Date(std::chrono::seconds(4)), {}};
    for (const Mail& mail : all) {
        const ArchivedEmailRecord record = recordOf(mail);
        (mail.isOnDisk ? onDisk : inCloud).records.push_back(record);
        scene.home().write(platform::joinPath(mail.isOnDisk ? disk : cloud, record.emlRelativePath.str()),
                           emlOf(mail));
    }
    LibraryScene made{writeIndex(scene.home(), cloud, inCloud), writeIndex(scene.home(), disk, onDisk)};
    scene.model().archiving().destinations.setTransferDestination(made.cloudRoot);
    scene.model().library().loader.loadEmailArchiveIndex(made.cloudRoot, true);
    scene.settle();
    scene.model().library().bodyTexts.rebuildBodyTextIndex(false);
    scene.settle();
    return made;
}

} // namespace corvane::testing
