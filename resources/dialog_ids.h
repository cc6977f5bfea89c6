// The numbers that name the DLL's dialogs and their controls: the template index of each
// dialog and the id of each control. The dialog tables build the templates with them and the
// pages find their controls by them, so each number is written here and nowhere else.
#pragma once

namespace dialog_ids {

// Template indices.
constexpr int kConnectionPageTemplate = 1;
constexpr int kProxyPageTemplate = 2;
constexpr int kOptionsPageTemplate = 3;
constexpr int kConnectionDetailsTemplate = 4;

// Template 1, the Connection page.
constexpr int kConnectionTypeLabel = 1001;
constexpr int kConnectionTypeList = 1002;
constexpr int kDiscoveryLoginLabel = 1003;
constexpr int kDiscoveryLoginEdit = 1004;
constexpr int kServerLabel = 1005;
constexpr int kServerBox = 1006;
constexpr int kLoginTypeLabel = 1007;
constexpr int kLoginTypeList = 1008;
constexpr int kLoginLabel = 1009;
constexpr int kLoginEdit = 1010;
constexpr int kCommandLineLabel = 1011;
constexpr int kCommandLineEdit = 1012;
constexpr int kStartDirectoryLabel = 1013;
constexpr int kStartDirectoryEdit = 1014;
constexpr int kServiceNameLabel = 1015;
constexpr int kServiceNameEdit = 1016;
constexpr int kServicePortLabel = 1017;
constexpr int kServicePortEdit = 1018;
constexpr int kBookmarkLabel = 1019;
constexpr int kBookmarkEdit = 1020;
constexpr int kAnswerBackLabel = 1021;
constexpr int kAnswerBackEdit = 1022;
constexpr int kEncryptionCheck = 1023;
constexpr int kLegacyProtocolCheck = 1024;

// Template 2, the Proxy page. Its route list has the id of the Connection page's type list.
constexpr int kProxyRouteList = 1002;
constexpr int kProxyHostLabel = 1025;
constexpr int kProxyHostEdit = 1026;
constexpr int kProxyPortLabel = 1027;
constexpr int kProxyPortEdit = 1028;
constexpr int kProxyUserLabel = 1029;
constexpr int kProxyUserEdit = 1030;
constexpr int kBrokerHostLabel = 1031;
constexpr int kBrokerHostEdit = 1032;
constexpr int kBrokerPortLabel = 1033;
constexpr int kBrokerPortEdit = 1034;
constexpr int kDialUpCheckBox = 1035;

// Template 3, the Options page.
constexpr int kIconLabel = 1036;
constexpr int kLargeIconView = 1037;
constexpr int kSmallIconView = 1038;
constexpr int kIconSourceLabel = 1039;
constexpr int kBrowseButton = 1040;
constexpr int kIconList = 1041;
constexpr int kDynamicSizingCheck = 1042;

// Template 4, Connection Details.
constexpr int kDetailsServerLabel = 1043;
constexpr int kDetailsServerEdit = 1044;
constexpr int kDetailsServiceNameLabel = 1045;
constexpr int kDetailsServiceNameEdit = 1046;
constexpr int kDetailsServicePortLabel = 1047;
constexpr int kDetailsServicePortEdit = 1048;
constexpr int kDetailsBookmarkLabel = 1049;
constexpr int kDetailsBookmarkEdit = 1050;
constexpr int kDetailsEncryptionCheck = 1051;

}  // namespace dialog_ids
