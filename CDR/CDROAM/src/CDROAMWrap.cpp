#include "CDROAMWrap.h"

#include <stdio.h>

#include "CDREntryLock.hpp"
#include "CDRRegistryAccess.hpp"
#include "QTX_CDRPullStatisticsImpl.h"
#include "QTX_CDRPushSettingImpl.h"
#include "QTX_CDRPushStatisticsImpl.h"
#include "QTX_CDRServiceAccessBinImpl.h"
#include "QTX_CDRServiceImpl.h"
#include "QTX_CDRServicePrefixBinImpl.h"

CDROAMWrap* CDROAMWrap::globalPtr = 0;

namespace {
const int kAccessBinCount = 5;
const int kPrefixBinCount = 8;
}  // namespace

CDROAMWrap::CDROAMWrap()
    : m_pullStatistics(0), m_pushSetting(0), m_pushStatistics(0), m_accessBins(0), m_service(0),
      m_prefixBins(0) {
  ZpoDiagRegisterModule("CDRProvider.so", "CDR", "CDROAM", "CdrOAM.log", &zpoHandle);

  m_pullStatistics = new QTX_CDRPullStatisticsImpl("CDRPullStatistic");
  m_pushSetting = new QTX_CDRPushSettingImpl("CDRPushSetting");
  printf("before to push sta\n");
  m_pushStatistics = new QTX_CDRPushStatisticsImpl("CDRPushStatistic");
  printf("after to push sta\n");

  char name[64];
  m_accessBins = new QTX_CDRServiceAccessBin*[kAccessBinCount];
  for (int i = 0; i < kAccessBinCount; ++i) {
    sprintf(name, "CDRServiceAccessBin_%i", i);
    m_accessBins[i] = new QTX_CDRServiceAccessBinImpl(name, i);
    printf("finish to create QTX_CDRServiceAccessBinImpl---%i\n", i);
  }

  m_service = new QTX_CDRServiceImpl("QTX_System", "QTX", "QTX_CDRService", "CDRService");
  printf(" finish to create QTX_CDRService\n");

  m_prefixBins = new QTX_CDRServicePrefixBin*[kPrefixBinCount];
  for (int i = 0; i < kPrefixBinCount; ++i) {
    sprintf(name, "CDRServicePrefixBin_%i", i);
    m_prefixBins[i] = new QTX_CDRServicePrefixBinImpl(name, i);
    printf("finish to create QTX_CDRServicePrefixBinImpl---%i\n", i);
  }
}

// The two pointer arrays are not freed; the holder normally lives until the
// process ends.
CDROAMWrap::~CDROAMWrap() {
  delete m_pullStatistics;
  delete m_pushSetting;
  delete m_pushStatistics;
  delete m_service;
  for (int i = 0; i < kAccessBinCount; ++i) delete m_accessBins[i];
  for (int i = 0; i < kPrefixBinCount; ++i) delete m_prefixBins[i];
  ZpoDiagDeregisterModule(zpoHandle);
}

extern "C" {

CDROAMWrap* createCDROAMInstances() {
  CDREntryLock hold;
  CDROAMWrap::globalPtr = new CDROAMWrap();
  return CDROAMWrap::globalPtr;
}

// globalPtr is left as it is: callers call this once.
void releaseCDROAMInstances() {
  CDREntryLock hold;
  if (CDROAMWrap::globalPtr != 0) delete CDROAMWrap::globalPtr;
}

// Runs on the platform's notification thread: nothing may escape from it.
void C_RestoreCallBackHdlr(unsigned long value) {
  CDREntryLock hold;
  if (gCDRPushInstance == 0) return;
  try {
    gCDRPushInstance->RestoreCallBackHdlr(value);
  } catch (...) {
    // The failure is already in the diagnostic log; the schedule stays as
    // the scheduler left it.
  }
}
}
