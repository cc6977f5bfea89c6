#include "resources/local_strings.h"

#include <cstddef>

namespace {

// A stored text. Built only from a literal that ends in an explicit "\0" (so two NULs in
// all), or from nullptr for a language without its own text; anything else fails to compile.
struct StoredText {
    template <std::size_t N>
    consteval StoredText(const char16_t (&text)[N]) : text(text) {
        if (N < 2 || text[N - 2] != u'\0') throw "a stored text ends in two NULs";
    }
    constexpr StoredText(std::nullptr_t) : text(nullptr) {}
    const char16_t* text;
};

// The languages that have texts of their own, in the order of their language index.
struct OwnTexts {
    StoredText en;            // 1 English_UK
    StoredText de = nullptr;  // 2 German
    StoredText fr = nullptr;  // 3 French
    StoredText es = nullptr;  // 4 Spanish
    StoredText nl = nullptr;  // 7 Dutch
    StoredText ko = nullptr;  // 10 Korean
    StoredText ja = nullptr;  // 12 Japanese
    StoredText zt = nullptr;  // 13 Chinese_Traditional
    StoredText zs = nullptr;  // 14 Chinese_Simplified
};

constexpr LocalTextRow Row(const OwnTexts& own) {
    LocalTextRow row{};
    row.texts[0] = own.en.text;
    row.texts[1] = own.de.text;
    row.texts[2] = own.fr.text;
    row.texts[3] = own.es.text;
    row.texts[6] = own.nl.text;
    row.texts[9] = own.ko.text;
    row.texts[11] = own.ja.text;
    row.texts[12] = own.zt.text;
    row.texts[13] = own.zs.text;
    return row;
}

}  // namespace

// One row per string id, 0 to 48. The filter lists of id 40 are kept as they were
// first shipped, odd entries included ("*ico", commas, untranslated "All files").
// clang-format off
constinit const LocalTextRow g_localTextRows[kLocalStringCount] = {
    /* 0 */ Row({.en = u"Use &encryption\0",
                 .zs = u"使用加密(&E)\0"}),
    /* 1 */ Row({.en = u"&Use legacy protocol\0",
                 .zs = u"使用旧版协议(&U)\0"}),
    /* 2 */ Row({.en = u"Proxy &Server:\0",
                 .ko = u"프록시 서버(&S):\0",
                 .zt = u"代理伺服器(&S):\0",
                 .zs = u"代理服务器(&S):\0"}),
    /* 3 */ Row({.en = u"Proxy &Port:\0",
                 .ko = u"프록시 포트(&P):\0",
                 .zt = u"代理連接埠(&P):\0",
                 .zs = u"代理端口(&P):\0"}),
    /* 4 */ Row({.en = u"Proxy &User:\0",
                 .ko = u"프록시 사용자(&U):\0",
                 .zt = u"代理使用者(&U):\0",
                 .zs = u"代理用户(&U):\0"}),
    /* 5 */ Row({.en = u"Proxy Pass&word:\0",
                 .ko = u"프록시 암호(&W):\0",
                 .zt = u"代理密碼(&W):\0",
                 .zs = u"代理密码(&W):\0"}),
    /* 6 */ Row({.en = u"This connection uses a dial-up/&ISDN line\0",
                 .ko = u"이 연결에 전화 접속/ISDN 회선 사용(&I)\0",
                 .zt = u"此連線使用撥號/ISDN 線路(&I)\0",
                 .zs = u"此连接使用拨号/ISDN 线路(&I)\0"}),
    /* 7 */ Row({.en = u"B&roker:\0",
                 .ko = u"브로커(&R):\0",
                 .zt = u"連線代理人(&R):\0",
                 .zs = u"连接代理(&R):\0"}),
    /* 8 */ Row({.en = u"Broker P&ort:\0",
                 .ko = u"브로커 포트(&O):\0",
                 .zt = u"連線代理人連接埠(&O):\0",
                 .zs = u"连接代理端口(&O):\0"}),
    /* 9 */ Row({.en = u"&Answer back:\0",
                 .de = u"&Rückmeldung:\0",
                 .fr = u"&Message de réponse:\0",
                 .es = u"&Mensaje de respuesta:\0",
                 .nl = u"&Antwoordtekst:\0",
                 .zt = u"應答訊息(&A):\0",
                 .zs = u"应答消息(&A):\0"}),
    /* 10 */ Row({.en = u"&Dynamic screen sizing\0",
                  .de = u"&Dynamische Bildschirmgröße\0",
                  .fr = u"Taille d'écran &dynamique\0",
                  .es = u"Tamaño de pantalla &dinámico\0",
                  .nl = u"&Dynamische schermgrootte\0",
                  .ko = u"동적 화면 크기 조정(&D)\0",
                  .zt = u"動態調整螢幕大小(&D)\0",
                  .zs = u"动态调整屏幕大小(&D)\0"}),
    /* 11 */ Row({.en = u"&Server:\0",
                  .de = u"&Server:\0",
                  .fr = u"&Serveur:\0",
                  .es = u"&Servidor:\0",
                  .nl = u"&Server:\0",
                  .ko = u"서버(&S):\0",
                  .ja = u"サーバ名:\0",
                  .zt = u"伺服器(&S):\0",
                  .zs = u"服务器(&S):\0"}),
    /* 12 */ Row({.en = u"&Login:\0",
                  .de = u"&Anmeldename:\0",
                  .es = u"&Usuario:\0",
                  .ko = u"로그인 이름(&L):\0",
                  .ja = u"ﾕｰｻﾞｰID:\0",
                  .zt = u"登入名稱(&L):\0",
                  .zs = u"登录名(&L):\0"}),
    /* 13 */ Row({.en = u"&VOXA Command Line:\0",
                  .de = u"&VOXA-Befehlszeile:\0",
                  .fr = u"Ligne de commande &VOXA:\0",
                  .es = u"&Lnea de comando &VOXA:\0",
                  .nl = u"&VOXA Commando regel:\0",
                  .ko = u"VOXA 명령어 라인(&K):\0",
                  .zt = u"VOXA命令行\0",
                  .zs = u"VOXA命令行\0"}),
    /* 14 */ Row({.en = u"&Password:\0",
                  .de = u"&Kennwort:\0",
                  .fr = u"&Mot de passe:\0",
                  .es = u"&Contraseña:\0",
                  .nl = u"&Wachtwoord:\0",
                  .ko = u"암호(&P):\0",
                  .ja = u"ﾊﾟｽﾜｰﾄﾞ:\0",
                  .zt = u"密碼(&P):\0",
                  .zs = u"密码(&P):\0"}),
    /* 15 */ Row({.en = u"Connection &type:\0",
                  .de = u"Verbindungs&typ:\0",
                  .fr = u"&Type de connexion:\0",
                  .es = u"&Tipo de conexión:\0",
                  .nl = u"Verbindings&type:\0",
                  .ko = u"연결 유형(&T):\0",
                  .zt = u"連線類型(&T):\0",
                  .zs = u"连接类型(&T):\0"}),
    /* 16 */ Row({.en = u"Login type:\0",
                  .de = u"Anmeldeart:\0",
                  .fr = u"Type d'identification:\0",
                  .es = u"Tipo de inicio de sesión:\0",
                  .nl = u"Aanmeldingstype:\0",
                  .ko = u"로그인 유형:\0",
                  .zt = u"登入類型:\0",
                  .zs = u"登录类型:\0"}),
    /* 17 */ Row({.en = u"&Start directory:\0",
                  .de = u"&Startverzeichnis:\0",
                  .fr = u"&Répertoire de démarrage:\0",
                  .es = u"&Directorio de inicio:\0",
                  .nl = u"&Startmap:\0",
                  .ko = u"시작 디렉터리(&S):\0",
                  .zt = u"起始目錄(&S):\0",
                  .zs = u"起始目录(&S):\0"}),
    /* 18 */ Row({.en = u"Serv&ice Name:\0",
                  .de = u"D&ienstname:\0",
                  .fr = u"Nom du serv&ice:\0",
                  .es = u"Nombre del serv&icio:\0",
                  .nl = u"Serv&icenaam:\0",
                  .ko = u"서비스 이름(&I):\0",
                  .zt = u"服務名稱(&I):\0",
                  .zs = u"服务名称(&I):\0"}),
    /* 19 */ Row({.en = u"&Service Port:\0",
                  .de = u"Dienst&port:\0",
                  .fr = u"&Port du service:\0",
                  .es = u"&Puerto del servicio:\0",
                  .nl = u"Service&poort:\0",
                  .ko = u"서비스 포트(&P):\0",
                  .zt = u"服務連接埠(&P):\0",
                  .zs = u"服务端口(&P):\0"}),
    /* 20 */ Row({.en = u"Application &Command Line:\0",
                  .de = u"Anwendungs&befehlszeile:\0",
                  .fr = u"Ligne de &commande de l'application:\0",
                  .es = u"Línea de &comandos de la aplicación:\0",
                  .nl = u"&Opdrachtregel van de toepassing:\0",
                  .ko = u"응용 프로그램 명령줄(&C):\0",
                  .zt = u"應用程式命令列(&C):\0",
                  .zs = u"应用程序命令行(&C):\0"}),
    /* 21 */ Row({.en = u"Connection\0",
                  .de = u"Verbindung\0",
                  .es = u"Conexión\0",
                  .nl = u"Verbinding\0",
                  .ko = u"연결\0",
                  .zt = u"連接\0",
                  .zs = u"连接\0"}),
    /* 22 */ Row({.en = u"&Browse Icon ...\0",
                  .de = u"&Nach Icon durchsuchen...\0",
                  .fr = u"&Recherche....\0",
                  .es = u"&Buscar icono\0",
                  .nl = u"Ikoon &zoeken...\0",
                  .ko = u"아이콘 보기(&B)\0",
                  .zt = u"瀏覽圖符\0",
                  .zs = u"浏览图标\0"}),
    /* 23 */ Row({.en = u"Options\0",
                  .de = u"Optionen\0",
                  .es = u"Opciones\0",
                  .nl = u"Opties\0",
                  .ko = u"옵션\0",
                  .zt = u"選項\0",
                  .zs = u"选项\0"}),
    /* 24 */ Row({.en = u"Look for icons in: %1\0",
                  .zs = u"查找图标于: %1\0"}),
    /* 25 */ Row({.en = u"Icon: \0",
                  .zs = u"图标: \0"}),
    /* 26 */ Row({.en = u"Connect as user ...\0",
                  .ko = u"다른 사용자로 연결 ...\0"}),
    /* 27 */ Row({.en = u"Manage cached passwords ...\0",
                  .ko = u"저장된 암호 관리 ...\0"}),
    /* 28 */ Row({.en = u"Always require password\0",
                  .de = u"Kennwort immer abfragen\0",
                  .fr = u"Toujours demander le mot de passe\0",
                  .es = u"Pedir siempre la contraseña\0",
                  .nl = u"Altijd om wachtwoord vragen\0",
                  .ko = u"항상 암호 요구\0",
                  .zt = u"一律要求密碼\0",
                  .zs = u"始终要求密码\0"}),
    /* 29 */ Row({.en = u"Cache password\0",
                  .de = u"Kennwort zwischenspeichern\0",
                  .fr = u"Mémoriser le mot de passe\0",
                  .es = u"Recordar la contraseña\0",
                  .nl = u"Wachtwoord onthouden\0",
                  .ko = u"암호 저장\0",
                  .zt = u"記住密碼\0",
                  .zs = u"记住密码\0"}),
    /* 30 */ Row({.en = u"Text window on connect\0",
                  .de = u"Textfenster beim Verbinden\0",
                  .fr = u"Fenêtre de texte à la connexion\0",
                  .es = u"Ventana de texto al conectar\0",
                  .nl = u"Tekstvenster bij verbinden\0",
                  .ko = u"연결 시 텍스트 창 표시\0",
                  .zt = u"連線時顯示文字視窗\0",
                  .zs = u"连接时显示文本窗口\0"}),
    /* 31 */ Row({.en = u"NT domain authentication\0",
                  .de = u"NT-Domänenauthentifizierung\0",
                  .fr = u"Authentification de domaine NT\0",
                  .es = u"Autenticación de dominio NT\0",
                  .nl = u"NT-domeinverificatie\0",
                  .ko = u"NT 도메인 인증\0",
                  .zt = u"NT 網域驗證\0",
                  .zs = u"NT 域身份验证\0"}),
    /* 32 */ Row({.en = u"Use Windows domain credentials\0",
                  .ko = u"Windows 도메인 자격 증명 사용\0"}),
    /* 33 */ Row({.en = u"NT no logon\0",
                  .de = u"NT ohne Anmeldung\0",
                  .fr = u"NT sans ouverture de session\0",
                  .es = u"NT sin inicio de sesión\0",
                  .nl = u"NT zonder aanmelding\0",
                  .zt = u"NT 不登入\0",
                  .zs = u"NT 不登录\0"}),
    /* 34 */ Row({.en = u"Connect to remote server\0",
                  .de = u"Mit Remoteserver verbinden\0",
                  .fr = u"Se connecter à un serveur distant\0",
                  .es = u"Conectar a un servidor remoto\0",
                  .nl = u"Verbinden met externe server\0",
                  .ko = u"원격 서버에 연결\0",
                  .zt = u"連線到遠端伺服器\0",
                  .zs = u"连接到远程服务器\0"}),
    /* 35 */ Row({.en = u"Connect locally\0",
                  .de = u"Lokal verbinden\0",
                  .fr = u"Se connecter en local\0",
                  .es = u"Conectar localmente\0",
                  .nl = u"Lokaal verbinden\0",
                  .ko = u"로컬로 연결\0",
                  .zt = u"本機連線\0",
                  .zs = u"本地连接\0"}),
    /* 36 */ Row({.en = u"Discover service\0",
                  .ko = u"서비스 검색\0"}),
    /* 37 */ Row({.en = u"Connect directly\0",
                  .ko = u"직접 연결\0"}),
    /* 38 */ Row({.en = u"Connect via a proxy server\0",
                  .ko = u"프록시 서버를 통해 연결\0"}),
    /* 39 */ Row({.en = u"Connect via a connection broker\0",
                  .ko = u"연결 브로커를 통해 연결\0"}),
    /* 40 */ Row({.en = u"Executable and icon files\0*.exe;*.dll;*.ico\0All files\0*.*\0",
                  .de = u"Ausführbare und Icon-Dateien \0*.exe;*.dll;*.ico\0Alle Dateien\0*.*\0",
                  .fr = u"Fichier exécutables et icones\0*.exe;*.dll;*.ico\0All files\0*.*\0",
                  .es = u"Ejecutables e iconos\0*.exe;*.dll;*.ico\0Todos los archivos\0*.*\0",
                  .nl = u"Programma en ikoon bestanden\0*.exe;*.dll;*ico\0All files\0*.*\0",
                  .ko = u"실행 및 아이콘 파일\0*.exe;*.dll;*.ico\0모든 파일들\0*.*\0",
                  .zt = u"執行和附圖檔案\0*.exe,*.dll,*.ico\0All files\0"}),
    /* 41 */ Row({.en = u"Connection Details\0",
                  .ko = u"연결 정보\0"}),
    /* 42 */ Row({.en = u"Enter details of the server you want to connect to\0",
                  .ko = u"연결할 서버의 정보를 입력하십시오\0"}),
    /* 43 */ Row({.en = u"&Server:\0",
                  .ko = u"서버(&S):\0"}),
    /* 44 */ Row({.en = u"Service N&ame:\0",
                  .ko = u"서비스 이름(&A):\0"}),
    /* 45 */ Row({.en = u"Service &Port:\0",
                  .ko = u"서비스 포트(&P):\0"}),
    /* 46 */ Row({.en = u"&Bookmark:\0",
                  .ko = u"책갈피(&B):\0"}),
    /* 47 */ Row({.en = u"&Encrypt connection\0",
                  .ko = u"연결 암호화(&E)\0"}),
    /* 48 */ Row({.en = u"Proxy\0",
                  .zs = u"代理\0"}),
};
// clang-format on

namespace {

// clang-format off
constinit const LocalString kLocalStringRecords[kLocalStringCount] = {
    {0, g_localTextRows[0].texts},   {1, g_localTextRows[1].texts},
    {2, g_localTextRows[2].texts},   {3, g_localTextRows[3].texts},
    {4, g_localTextRows[4].texts},   {5, g_localTextRows[5].texts},
    {6, g_localTextRows[6].texts},   {7, g_localTextRows[7].texts},
    {8, g_localTextRows[8].texts},   {9, g_localTextRows[9].texts},
    {10, g_localTextRows[10].texts}, {11, g_localTextRows[11].texts},
    {12, g_localTextRows[12].texts}, {13, g_localTextRows[13].texts},
    {14, g_localTextRows[14].texts}, {15, g_localTextRows[15].texts},
    {16, g_localTextRows[16].texts}, {17, g_localTextRows[17].texts},
    {18, g_localTextRows[18].texts}, {19, g_localTextRows[19].texts},
    {20, g_localTextRows[20].texts}, {21, g_localTextRows[21].texts},
    {22, g_localTextRows[22].texts}, {23, g_localTextRows[23].texts},
    {24, g_localTextRows[24].texts}, {25, g_localTextRows[25].texts},
    {26, g_localTextRows[26].texts}, {27, g_localTextRows[27].texts},
    {28, g_localTextRows[28].texts}, {29, g_localTextRows[29].texts},
    {30, g_localTextRows[30].texts}, {31, g_localTextRows[31].texts},
    {32, g_localTextRows[32].texts}, {33, g_localTextRows[33].texts},
    {34, g_localTextRows[34].texts}, {35, g_localTextRows[35].texts},
    {36, g_localTextRows[36].texts}, {37, g_localTextRows[37].texts},
    {38, g_localTextRows[38].texts}, {39, g_localTextRows[39].texts},
    {40, g_localTextRows[40].texts}, {41, g_localTextRows[41].texts},
    {42, g_localTextRows[42].texts}, {43, g_localTextRows[43].texts},
    {44, g_localTextRows[44].texts}, {45, g_localTextRows[45].texts},
    {46, g_localTextRows[46].texts}, {47, g_localTextRows[47].texts},
    {48, g_localTextRows[48].texts},
};
// clang-format on

}  // namespace

// clang-format off
constinit const LocalString* const g_localStrings[kLocalStringCount] = {
    &kLocalStringRecords[0],  &kLocalStringRecords[1],  &kLocalStringRecords[2],
    &kLocalStringRecords[3],  &kLocalStringRecords[4],  &kLocalStringRecords[5],
    &kLocalStringRecords[6],  &kLocalStringRecords[7],  &kLocalStringRecords[8],
    &kLocalStringRecords[9],  &kLocalStringRecords[10], &kLocalStringRecords[11],
    &kLocalStringRecords[12], &kLocalStringRecords[13], &kLocalStringRecords[14],
    &kLocalStringRecords[15], &kLocalStringRecords[16], &kLocalStringRecords[17],
    &kLocalStringRecords[18], &kLocalStringRecords[19], &kLocalStringRecords[20],
    &kLocalStringRecords[21], &kLocalStringRecords[22], &kLocalStringRecords[23],
    &kLocalStringRecords[24], &kLocalStringRecords[25], &kLocalStringRecords[26],
    &kLocalStringRecords[27], &kLocalStringRecords[28], &kLocalStringRecords[29],
    &kLocalStringRecords[30], &kLocalStringRecords[31], &kLocalStringRecords[32],
    &kLocalStringRecords[33], &kLocalStringRecords[34], &kLocalStringRecords[35],
    &kLocalStringRecords[36], &kLocalStringRecords[37], &kLocalStringRecords[38],
    &kLocalStringRecords[39], &kLocalStringRecords[40], &kLocalStringRecords[41],
    &kLocalStringRecords[42], &kLocalStringRecords[43], &kLocalStringRecords[44],
    &kLocalStringRecords[45], &kLocalStringRecords[46], &kLocalStringRecords[47],
    &kLocalStringRecords[48],
};
// clang-format on

const char16_t* PickLocalText(const char16_t* const* texts, int languageIndex) noexcept {
    if (texts == nullptr) return nullptr;
    if (languageIndex >= 1 && languageIndex <= kLanguageSlots && texts[languageIndex - 1] != nullptr)
        return texts[languageIndex - 1];
    return texts[0];
}

const char16_t* LocalStringText(std::uint32_t id, int languageIndex) noexcept {
    if (id >= static_cast<std::uint32_t>(kLocalStringCount)) return nullptr;
    const LocalString* record = g_localStrings[id];
    if (record == nullptr) return nullptr;
    return PickLocalText(record->texts, languageIndex);
}

std::size_t DoubleNulTextLength(const char16_t* text) noexcept {
    std::size_t i = 0;
    while (text[i] != u'\0' || text[i + 1] != u'\0') ++i;
    return i + 2;
}
