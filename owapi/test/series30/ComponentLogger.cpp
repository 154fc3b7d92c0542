// Must not compile with OWAPI_SERIES_3_0: OpenWBEM 3.0 has no loggers per
// component, so provider code that asks for one would not build for the
// device. The test owapi_series30.HidesComponentLogger checks the error.
#include "OW_ProviderEnvironmentIFC.hpp"

void logThroughComponent(const OpenWBEM::ProviderEnvironmentIFCRef& env) {
  env->getLogger("CDRProvider")->logError("text");
}
