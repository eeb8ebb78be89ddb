// Serves instances, of which there are none.
#include "cimserver/host/providers/Plain.hpp"

OW_PROVIDERFACTORY(Plain, InstancesOnly)
