// A service as a plugin gets it, for tests that call services directly.
#pragma once

#include <studio/host.h>

#define SERVICE_OF(from, name) reinterpret_cast<::host::service::name>((from).resolver()(#name))
