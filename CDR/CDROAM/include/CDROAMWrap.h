// The holder of the 17 managed objects, created at initialisation in a fixed
// order with fixed keys, and the exported functions around it.
#ifndef CDROAMWRAP_H
#define CDROAMWRAP_H

class QTX_CDRPullStatistics;
class QTX_CDRPushSetting;
class QTX_CDRPushStatistics;
class QTX_CDRServiceAccessBin;
class QTX_CDRService;
class QTX_CDRServicePrefixBin;

class CDROAMWrap {
 public:
  // Registers the diagnostic module, then constructs every managed object.
  CDROAMWrap();
  // Deletes the objects in construction order and deregisters the
  // diagnostic module. The two pointer arrays are kept.
  virtual ~CDROAMWrap();

  // The holder made by createCDROAMInstances; null until then.
  static CDROAMWrap* globalPtr;

 private:
  CDROAMWrap(const CDROAMWrap&);
  CDROAMWrap& operator=(const CDROAMWrap&);

  QTX_CDRPullStatistics* m_pullStatistics;
  QTX_CDRPushSetting* m_pushSetting;
  QTX_CDRPushStatistics* m_pushStatistics;
  QTX_CDRServiceAccessBin** m_accessBins;
  QTX_CDRService* m_service;
  QTX_CDRServicePrefixBin** m_prefixBins;
};

extern "C" {
// Allocates a new holder into CDROAMWrap::globalPtr and returns it.
CDROAMWrap* createCDROAMInstances();
// Deletes CDROAMWrap::globalPtr when non-null; leaves the pointer as it is.
void releaseCDROAMInstances();
// Backup/restore callback: forwards the event to the live push setting.
void C_RestoreCallBackHdlr(unsigned long value);
}

#endif
