// The exported queries of what generators ask of the processor.
#include "platform/platform.h"
#include "services/export.h"
#include "services/services.h"

#include <orv/streams.h>

ORV_API int32_t __kuzCPUisRDRAND() { return orv::platform::processor_features().rdrand ? 1 : 0; }

ORV_API int32_t __kuzCPUisAES() { return orv::platform::processor_features().aes ? 1 : 0; }

ORV_API int32_t __kuzCPUisVAES() { return orv_serv_cpuisqlx() != 0 ? 1 : 0; }
