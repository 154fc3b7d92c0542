// Line numbers carried by the CIM errors of the six class providers, next to
// the source path of each provider's unit. They are part of what a client
// sees, so they stay as written in CDRProviderLines.cpp.
#ifndef CDR_PROVIDER_LINES_HPP
#define CDR_PROVIDER_LINES_HPP

struct CDRProviderLines {
  int pathKeyMissing;      // key absent, null or unknown in a path (6)
  int pathNoInstance;
  int instanceKeyMissing;  // the same for the keys of an instance (6)
  int instanceNoInstance;
  int keyGetterFailed;     // a key getter failed while building a path (6)
  int createNotSupported;  // (7)
  int deleteNotSupported;  // (7)
  int startChangeFailed;   // (1, the status in decimal)
  int setterFailed;        // (1, the status in decimal)
  int endChangeFailed;     // (1, the status in decimal)
  int invalidValue;        // a value refused before its setter (4)
  int methodNotFound;      // (17)
};

extern const CDRProviderLines QTX_CDRServiceProviderLines;
extern const CDRProviderLines QTX_CDRServicePrefixBinProviderLines;
extern const CDRProviderLines QTX_CDRServiceAccessBinProviderLines;
extern const CDRProviderLines QTX_CDRPushSettingProviderLines;
extern const CDRProviderLines QTX_CDRPushStatisticsProviderLines;
extern const CDRProviderLines QTX_CDRPullStatisticsProviderLines;

#endif
