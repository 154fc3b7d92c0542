// Registry access and diagnostic log shared by every managed class.
//
// Every property lives in the configuration registry under component "CDR";
// failures and warnings go to the platform diagnostic log "CdrOAM.log".
#ifndef CDR_REGISTRY_ACCESS_HPP
#define CDR_REGISTRY_ACCESS_HPP

#include <stdint.h>
#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"
#include "ZpoShared.h"

// Diagnostic handle filled in by ZpoDiagRegisterModule; 0 until registered.
extern uint32_t zpoHandle;
// Text buffer of the control-character warnings, shared by all readers.
extern char controlLogBuffer[256];

// Statuses of getters, setters and method operations.
const int CDR_STATUS_OK = 0;
const int CDR_STATUS_READ_FAILED = 100;
const int CDR_STATUS_WRITE_FAILED = 101;
const int CDR_STATUS_INVALID = 301;

// Registry status of an entry that does not exist yet.
const uint32_t CDR_REG_ENTRY_ABSENT = 0x20000D;
// Size of every text entry buffer.
const int CDR_TEXT_SIZE = 512;

extern const char* const CDR_REG_COMPONENT;         // "CDR"
extern const char* const CDR_REG_SECTION_SERVICE;   // "CDRService"
extern const char* const CDR_REG_SECTION_PUSH;      // "CDRPush"
extern const char* const CDR_REG_SECTION_PULL;      // "CDRPull"

// Diagnostic log levels used by the module.
const int CDR_LOG_NOTICE = 1;
const int CDR_LOG_WARNING = 2;
const int CDR_LOG_ERROR = 4;

// Adds one entry to the module's diagnostic log (category 2, identifier -1).
uint32_t cdrLog(int level, const char* text);
// The one form of a failed registry call in the log: "<operation> error =
// <status>" (the accessor's name and the registry status in decimal) at
// `level`; returns the log call's result.
uint32_t cdrLogError(int level, const char* operation, unsigned long status);
// cdrLogError at level 4.
uint32_t writeError(const char* operation, unsigned long code);

// -1 for a null pointer, an empty text, or a text holding a control
// character; 0 otherwise.
int isControlCharacter(char* text);

// The "Applicable" qualifier (type "boolean", data type Boolean).
OW_NAMESPACE::CIMQualifier cdrApplicableQualifier(bool applicable);
// The "ValidValueMap" qualifier: type "string" with data type String, value
// an array of unsigned 32-bit integers (the two differ on purpose).
OW_NAMESPACE::CIMQualifier cdrValidValueMapQualifier(const OW_NAMESPACE::Array<OW_NAMESPACE::UInt32>& values);

// Reads a text entry into a zeroed 512-byte buffer and converts it from
// ISO 8859-1 to UTF-8 into `field` (512 bytes), whatever the status. Returns
// the registry status.
uint32_t cdrReadText(const char* section, const char* key, char* field);

// Control-character check of a text just read into `field`. When it holds
// one (or is empty) the warning "ControlCharacters Found in PDR:<entryName>"
// is formatted into controlLogBuffer and logged at level 2, and `field` is
// replaced by `defaultText`. Returns true when the text was clean.
bool cdrCheckText(char* field, const char* entryName, const char* defaultText);

// Reads the 1-byte "TransferType" entry of the push section.
uint32_t cdrReadTransferType(unsigned char& type);

// Appends the "Applicable" qualifier with `applicable`; returns 1 when
// applicable, 0 when not (the result a setQulifier hands back).
int cdrAppendApplicable(OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers, bool applicable);

// Reads a text entry written by the transfer side, as the statistics show
// it: cdrReadText into `field`, then
//  - entry missing: `value` = `missingValue`, returns 0, nothing written;
//  - other failure: logs "<operation> error = <status>" at level 4,
//    `value` = `missingValue`, returns 100;
//  - read: cdrCheckText against `entryName` (empty default), `value` = the
//    field, returns 0.
int cdrReadStatisticsText(const char* section, const char* key, const char* operation,
                          const char* entryName, char* field, const std::string& missingValue,
                          std::string& value);

#endif
