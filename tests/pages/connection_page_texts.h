// The English entries of the Connection page's lists, as a user reads them: the page tests
// pick and check entries by these words.
#pragma once

namespace page_test {

inline constexpr char kRemote[] = "Connect to remote server";
inline constexpr char kLocal[] = "Connect locally";
inline constexpr char kDiscovery[] = "Discover service";
inline constexpr char kAlwaysRequirePassword[] = "Always require password";
inline constexpr char kCachePassword[] = "Cache password";
inline constexpr char kTextWindow[] = "Text window on connect";
inline constexpr char kNtDomain[] = "NT domain authentication";
inline constexpr char kNtNoLogon[] = "NT no logon";
inline constexpr char kWindowsDomain[] = "Use Windows domain credentials";

}  // namespace page_test
