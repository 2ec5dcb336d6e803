// The Xerces-C platform, initialised once per process on first use.
//
// Every entry point of xml/ that touches Xerces calls EnsureXercesPlatform()
// first. Initialisation is lazy and thread-safe (std::call_once), so hosts
// that never use XML pay nothing. A failure is traced as "Error initialising
// Xerces!\n" on standard error, once; every later call then reports false
// and the XML operations fail as they do for bad input.
//
// The platform is never terminated: XMLPlatformUtils::Terminate at unload
// would race with hosts that still hold documents or use Xerces
// themselves, and the process's exit releases it anyway. Xerces counts
// initialisations, so a host that initialises and terminates Xerces on its
// own does not take the platform away from this library.
#pragma once

namespace utilkit::xml {

// True when the platform is ready for use.
bool EnsureXercesPlatform();

}  // namespace utilkit::xml
