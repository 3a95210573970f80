"""Names, subjects and sentences of the made-up mail. Every domain is a reserved one (RFC 2606)."""

ZH_SURNAMES = [
    ("王", "wang"), ("李", "li"), ("张", "zhang"), ("刘", "liu"), ("陈", "chen"), ("杨", "yang"),
    ("黄", "huang"), ("赵", "zhao"), ("吴", "wu"), ("周", "zhou"), ("徐", "xu"), ("孙", "sun"),
    ("马", "ma"), ("朱", "zhu"), ("胡", "hu"), ("郭", "guo"), ("何", "he"), ("林", "lin"),
    ("高", "gao"), ("罗", "luo"), ("欧阳", "ouyang"), ("司马", "sima"),
]
ZH_GIVEN = [
    ("伟", "wei"), ("芳", "fang"), ("娜", "na"), ("敏", "min"), ("静", "jing"), ("丽", "li"),
    ("强", "qiang"), ("磊", "lei"), ("洋", "yang"), ("艳", "yan"), ("勇", "yong"), ("军", "jun"),
    ("杰", "jie"), ("涛", "tao"), ("超", "chao"), ("秀兰", "xiulan"), ("建国", "jianguo"),
    ("晓东", "xiaodong"), ("雨桐", "yutong"), ("子轩", "zixuan"), ("思远", "siyuan"),
    ("海燕", "haiyan"), ("志明", "zhiming"), ("春梅", "chunmei"),
]
TW_NAMES = [
    ("陳怡君", "chen.yichun"), ("林志豪", "lin.chihhao"), ("黃淑芬", "huang.shufen"),
    ("張家豪", "chang.chiahao"), ("吳雅婷", "wu.yating"), ("劉冠宇", "liu.kuanyu"),
]
JA_NAMES = [
    ("田中太郎", "tanaka.taro"), ("佐藤美咲", "sato.misaki"), ("鈴木一郎", "suzuki.ichiro"),
    ("山本花子", "yamamoto.hanako"), ("中村健", "nakamura.ken"),
]
EN_FIRST = [
    "Anna", "Ben", "Carla", "David", "Emma", "Frank", "Grace", "Henry", "Irene", "Jack", "Karen",
    "Liam", "Maria", "Noah", "Olivia", "Peter", "Rosa", "Simon", "Tara", "Victor", "Wendy",
]
EN_LAST = [
    "Archer", "Brooks", "Carter", "Dalton", "Ellis", "Foster", "Grant", "Hughes", "Irving",
    "Jensen", "Keller", "Lambert", "Morris", "Novak", "O'Brien", "Price", "Quinn", "Ramsey",
    "Sutton", "Turner", "Walsh",
]
DOMAINS = {
    "zh": ["huaxin.example", "qingmail.example", "tianhe-design.example", "beifang.example",
           "yunlan.example", "students.donghu.example"],
    "tw": ["formosa.example", "taipei-print.example"],
    "ja": ["sakura.example", "kyoto-yaki.example"],
    "en": ["northlake.example", "brightpost.example", "harbor-legal.example", "unifield.example",
           "meridian.example"],
}

# Senders of automatic mail: name (may be empty), address, language.
NOTICE_SENDERS = [
    ("华信银行信用卡中心", "bill@creditcard.huaxin-bank.example", "zh"),
    ("云岚航空", "service@yunlan-air.example", "zh"),
    ("书海网", "order@shuhai.example", "zh"),
    ("", "no-reply@rail-ticket.example", "zh"),
    ("Cloudberry Hosting", "billing@cloudberry.example", "en"),
    ("", "notifications@codeforge.example", "en"),
    ("Parcel Tracker", "track@parcel.example", "en"),
]
LETTER_SENDERS = [
    ("城市读书会", "weekly@dushu.example", "zh"),
    ("设计周刊", "editor@designweekly.example", "zh"),
    ("臺北印刷週報", "news@taipei-print.example", "tw"),
    ("The Longread Letter", "letter@longread.example", "en"),
    ("", "digest@weekend-list.example", "en"),
]
SPAMMERS = [
    ("Prize Department", "winner{n}@lucky-draw{n}.example", "en"),
    ("财税代办", "kf{n}@daikai{n}.example", "zh"),
    ("", "offer{n}@cheap-watch{n}.example", "en"),
    ("发票服务", "fp{n}@fapiao{n}.example", "zh"),
]

FILLERS = {
    "zh": {
        "proj": ["东湖新馆", "数据平台二期", "年度预算", "客户回访", "官网改版", "仓库搬迁", "海报设计",
                 "供应商评审", "春季招聘", "移动端改版", "老照片整理", "合同归档", "展会筹备"],
        "city": ["北京", "上海", "杭州", "成都", "西安", "武汉", "广州", "昆明", "青岛", "哈尔滨"],
        "day": ["周一上午", "周二下午", "周三", "周四晚上", "周五下班前", "月底", "下周", "国庆之后"],
        "item": ["报价单", "会议纪要", "设计稿", "测试报告", "发票", "行程单", "体检报告", "租房合同",
                 "培训材料", "照片", "审批表", "采购清单"],
        "who": ["小王", "李工", "张老师", "财务部", "法务同事", "客户方", "陈经理", "物业"],
    },
    "tw": {
        "proj": ["新書發表會", "展場佈置", "印刷打樣", "客戶訪談", "官網更新"],
        "city": ["臺北", "臺中", "高雄", "新竹", "花蓮"],
        "day": ["週一上午", "週三下午", "月底", "下週五", "連假之後"],
        "item": ["報價單", "會議紀錄", "設計稿", "發票", "行程表"],
        "who": ["王小姐", "林經理", "會計部", "編輯部", "攝影師"],
    },
    "ja": {
        "proj": ["新製品発表", "展示会準備", "翻訳作業", "工場見学"],
        "city": ["東京", "京都", "大阪", "札幌", "福岡"],
        "day": ["月曜日の午前", "水曜日", "来週", "月末"],
        "item": ["見積書", "議事録", "図面", "請求書", "写真"],
        "who": ["田中さん", "佐藤さん", "営業部", "先方"],
    },
    "en": {
        "proj": ["the harbour study", "phase two", "the annual budget", "the website relaunch",
                 "the supplier review", "the office move", "spring hiring", "the photo archive",
                 "the reading group", "the data platform"],
        "city": ["Bristol", "Oslo", "Lisbon", "Toronto", "Shanghai", "Vienna", "Dublin", "Porto"],
        "day": ["Monday morning", "Tuesday", "Thursday evening", "Friday noon", "the 14th",
                "the 28th"],
        "item": ["quote", "minutes", "draft", "test report", "invoice", "itinerary", "contract",
                 "slides", "photos", "checklist"],
        "who": ["Anna", "the legal team", "our landlord", "Mr Keller", "the client", "accounting"],
    },
}

SUBJECTS = {
    "zh": ["关于{proj}的{item}", "{proj}进度更新（{num}）", "{day}的会议安排", "{city}出差的{item}",
           "请查收{item}", "{proj}：请{who}确认", "{item}第{few}版", "周末去{city}吗？",
           "【重要】{proj}时间调整", "{who}问的{item}"],
    "tw": ["關於{proj}的{item}", "{day}的會議安排", "{city}行程與{item}", "請查收{item}（{num}）"],
    "ja": ["{proj}の{item}について", "{day}の打ち合わせ", "{item}送付のご案内（{num}）"],
    "en": ["{proj}: {item} attached", "Meeting on {day}", "Trip to {city}", "{item} no. {few}",
           "Question about {proj}", "Quick update on {proj} ({num})", "Lunch in {city}?",
           "Re-sending the {item}", "Café on {day}?"],
}
NOTICES = {
    "zh": ["您的账单已生成（{num}）", "订单{num}已发货", "行程确认：{city}", "验证码提醒 {num}"],
    "en": ["Your invoice #{num}", "[codeforge] build {num} failed", "Order {num} has shipped",
           "Your booking in {city}"],
}
LETTERS = {
    "zh": ["本周推荐：{city}的{few}家书店", "第{few}期｜{proj}背后的故事", "读者来信与{item}"],
    "tw": ["本週精選：{city}的{few}家書店", "第{few}期｜{proj}"],
    "en": ["Issue {few}: letters from {city}", "The weekend list, no. {few}"],
}
SPAM = {
    "zh": ["代开各类发票 {few}折", "无抵押贷款{few}万当天放款"],
    "en": ["You have WON {few},000 dollars", "Cheap watches -{few}%", "Final notice {num}"],
}

GREETINGS = {
    "zh": ["您好：", "{who}，你好！", "各位同事：", "大家好，"],
    "tw": ["您好：", "各位同仁：", "親愛的讀者："],
    "ja": ["お世話になっております。", "皆様、"],
    "en": ["Hi all,", "Dear {who},", "Hello,", "Good morning,"],
}
SENTENCES = {
    "zh": [
        "附件是{proj}的{item}，请在{day}之前看一下，有问题直接回信。",
        "{who}说{city}那边已经准备好了，我们{day}出发。",
        "上次讨论的{item}我改了两处：一是编号改成{num}，二是金额按{amount}元计算。",
        "麻烦把{item}再发一份给{who}，原来的文件打不开了。",
        "这件事不急，等{day}再说也可以。",
        "合同金额一共{amount}元，分三次付清，第一次在{day}。",
        "昨天在{city}见到了几位老朋友，聊到很晚。",
        "会议改到{day}，地点还是老地方，三号楼{num}室。",
        "数据已经核对过了，共{num}条记录，其中有几条需要{who}确认。",
        "如果方便的话，请把{city}的照片也放进共享文件夹。",
        "我把历史版本都保留了下来，方便以后查找。",
        "供应商的回复比预想的慢，{proj}可能要推迟几天。",
        "孩子们很喜欢上次的礼物，谢谢你们。",
        "请注意：旧系统将在{day}停用，届时邮件会自动归档。",
        "订单号{num}，实付{amount}元，预计{day}送达{city}。",
        "下面是会议上记下来的几点，请大家补充。",
        "预算表里第{num}行的公式有误，已经更正。",
        "天气预报说{city}{day}有雨，记得带伞。",
    ],
    "tw": [
        "附件為{proj}的{item}，請於{day}前回覆。",
        "{who}表示{city}的場地已經確認，編號是{num}。",
        "費用共{amount}元，{day}以前付清即可。",
        "請將{item}轉交給{who}，謝謝您的協助。",
        "這一期我們走訪了{city}的老書店，歡迎閱讀。",
        "如有任何問題，請直接回信或來電。",
        "連續三天的雨讓進度慢了一些，請見諒。",
    ],
    "ja": [
        "{proj}の{item}を添付いたしましたので、ご確認ください。",
        "{day}までにお返事をいただけますと幸いです。",
        "{city}の会場は予約番号{num}で確保しました。",
        "費用は{amount}円の予定です。",
        "{who}にも同じ資料をお送りしました。",
        "何かご不明な点がございましたら、お知らせください。",
    ],
    "en": [
        "Please find the {item} for {proj} attached; comments by {day} would be great.",
        "{who} told me that everything in {city} is ready, so we can start on {day}.",
        "I changed two things: the number is now {num}, and the total comes to {amount}.",
        "Could you send the {item} to {who} once more? The old file would not open.",
        "There is no hurry with this, any time before {day} will do.",
        "The reference is {num} and the balance due is {amount} euros.",
        "We met some old friends in {city} and talked until late.",
        "The meeting moves to {day}, same place, room {num}.",
        "The figures have been checked: {num} rows, of which a few need another look by {who}.",
        "I kept all the earlier versions so that we can find them later.",
        "The supplier took longer than expected, and {proj} may slip by some days.",
        "The old system will be switched off on {day}; mail is archived automatically.",
        "Below are the points I wrote down, please add what I missed.",
        "The forecast for {city} says rain on {day}, so bring a coat.",
        "It was a pleasure to see the first results of {proj}.",
    ],
}
CLOSINGS = {
    "zh": ["谢谢！", "此致\n敬礼", "祝好\n{me}", "顺祝商祺\n{me}", "{me}\n发自我的手机"],
    "tw": ["謝謝！\n{me}", "敬祝 順心\n{me}"],
    "ja": ["よろしくお願いいたします。\n{me}"],
    "en": ["Best regards,\n{me}", "Thanks,\n{me}", "Cheers\n{me}", "-- \n{me}\nSent from my phone"],
}
QUOTE_LINES = {
    "zh": "在 {date}，{who} 写道：",
    "tw": "於 {date}，{who} 寫道：",
    "ja": "{date}、{who} のメール：",
    "en": "On {date}, {who} wrote:",
}
REPLY_PREFIXES = {
    "zh": ["Re: ", "回复：", "答复: ", "RE: "],
    "tw": ["Re: ", "回覆: "],
    "ja": ["Re: "],
    "en": ["Re: ", "RE: ", "AW: "],
}
FORWARD_PREFIXES = {"zh": "转发：", "tw": "Fwd: ", "ja": "Fwd: ", "en": "Fwd: "}

FILE_STEMS = {
    "zh": ["{proj}{item}", "{item}_{num}", "{city}行程{num}", "{item}（最终版{few}）"],
    "tw": ["{proj}{item}", "{item}-{num}"],
    "ja": ["{item}_{num}", "{proj}資料{num}"],
    "en": ["{item}-{num}", "{city} {item} {num}", "report_{num}"],
}

# Weight, charset label, Python codec, header encoding, body encoding. A mail that says gb2312 is
# mostly written with more characters than that set has, so its codec is the largest of the family.
CHARSETS = {
    "zh": [
        (30, "utf-8", "utf-8", "B", "base64"), (15, "utf-8", "utf-8", "B", "quoted-printable"),
        (10, "UTF-8", "utf-8", "Q", "8bit"), (12, "gb2312", "gb18030", "B", "base64"),
        (8, "GBK", "gbk", "B", "quoted-printable"), (8, "gb18030", "gb18030", "B", "base64"),
        (8, "gb2312", "gb18030", "Q", "8bit"),
    ],
    "tw": [
        (5, "big5", "big5", "B", "base64"), (3, "big5", "big5", "Q", "quoted-printable"),
        (2, "utf-8", "utf-8", "B", "base64"),
    ],
    "ja": [
        (6, "iso-2022-jp", "iso2022_jp", "B", "7bit"), (3, "utf-8", "utf-8", "B", "base64"),
    ],
    "en": [
        (8, "us-ascii", "ascii", "Q", "7bit"),
        (4, "iso-8859-1", "latin-1", "Q", "quoted-printable"),
        (4, "utf-8", "utf-8", "Q", "quoted-printable"),
        (3, "windows-1252", "cp1252", "Q", "quoted-printable"),
    ],
}
