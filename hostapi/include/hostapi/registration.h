// Fitting the class records to the running host, and registering them.
#pragma once

#include <hostapi/abi.h>

// The record version in use: 9 to 12.
extern std::int32_t CurrentREALControlVersion;

// The record version for a host version.
std::int32_t RecordVersionForHost(double hostVersion);

// Keeps the resolver, reads the host's version and tells the host the record version that goes with it. The
// first thing that a plugin's entry does; a host without "RegisterPluginVersion" is not supported.
void NegotiateRecordVersion(REALResolver resolver);

// Folds or clears, in place, the flag bits that hosts before 2010.029 do not know: of the class and of all
// its methods and properties, shared ones included.
void FixConsoleFlags(REALclassDefinition* definition);

// A copy of a property table in the layout of record version 9; null for an empty table. Lives for good.
REALproperty9* FixProperties(const REALproperty* table, std::int32_t count);

// Prepares the record for the running host and registers it. Does nothing when the host has no registration
// service.
void MyREALRegisterClass(REALclassDefinition* definition);
