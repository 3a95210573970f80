// The names of the user's settings.
#pragma once

namespace corvane {

inline constexpr const char* transferDestinationKey = "corvaneTransferDestinationPath";
inline constexpr const char* knownLocationsKey = "corvaneKnownLocationRoots";
inline constexpr const char* forgottenLocationsKey = "corvaneForgottenLocationRoots";
// Those of the forgotten ones that haven't been away since.
inline constexpr const char* forgottenPresentLocationsKey = "corvaneForgottenPresentLocationRoots";
// When each root was last seen connected, as a timestamp by root.
inline constexpr const char* locationsLastSeenKey = "corvaneLocationsLastSeen";
inline constexpr const char* archiveAccountMergeRulesKey = "corvaneAccountMergeRules";
inline constexpr const char* setAsideMessagesKey = "corvaneSetAsideMessageIDs";
inline constexpr const char* selectedAccountPrefixesKey = "selectedAccountPrefixes";

} // namespace corvane
