// OpenWBEM's configuration header as the module includes it. OpenWBEM 3.1
// and later name their versioned namespace OW_NAMESPACE; 3.0, the device's
// series, opens namespace OpenWBEM directly and has no such macro.
#ifndef CDR_OW_CONFIG_HPP
#define CDR_OW_CONFIG_HPP

#include "OW_config.h"

#ifndef OW_NAMESPACE
#define OW_NAMESPACE OpenWBEM
#endif

#endif
