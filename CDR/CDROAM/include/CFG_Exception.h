// Exceptions of the managed-object framework. They carry no data: lookups
// report a missing instance, managers refuse creation and deletion, and the
// push setting reports registry failures with them.
#ifndef CFG_EXCEPTION_H
#define CFG_EXCEPTION_H

#include <exception>

class CFG_Exception : public std::exception {};

// No instance with the requested key, or the iteration cursor is exhausted.
class CFG_NoInstance : public CFG_Exception {};

// The instance manager cannot create an instance.
class CFG_InstanceCreationFailed : public CFG_Exception {};

// The instance manager cannot delete an instance.
class CFG_InstanceDeletionFailed : public CFG_Exception {};

// A configuration registry read failed.
class CFG_ReadError : public CFG_Exception {};

// A configuration registry write failed.
class CFG_WriteError : public CFG_Exception {};

#endif
