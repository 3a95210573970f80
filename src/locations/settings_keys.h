// The names of the user's settings.
#pragma once

namespace corvane {

inline constexpr const char* transferDestinationKey = "corvaneTransferDestinationPath";
inline constexpr const char* knownLocationsKey = "corvaneKnownLocationRoots";
inline constexpr const char* forgottenLocationsKey = "corvaneForgottenLocationRoots";
inline constexpr const char* archiveAccountMergeRulesKey = "corvaneAccountMergeRules";
inline constexpr const char* setAsideMessagesKey = "corvaneSetAsideMessageIDs";
inline constexpr const char* selectedAccountPrefixesKey = "selectedAccountPrefixes";

} // namespace corvane
