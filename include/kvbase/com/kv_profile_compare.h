#pragma once

#include "kvbase/base/export.h"

class KV_COMManager;
class KV_FileSpec;
class KV_ProfileRef;

/// Tells whether two colour profiles are equal. What that means is the profile module's to say
/// (KV_IProfile::Equal): this class brings both profiles into the form of objects of that module, asks, and
/// releases what it took, also when something raises on the way. It looks at nothing itself; a file that is
/// compared with itself is opened twice.
///
/// Profile objects are made at ProfileModule:Profile, "IProfile", and opened with the mode 9. What
/// CreateObject and the module raise passes through. Any number of threads may compare at once.
class KV_EXPORT KV_ProfileCompare {
public:
    /// manager is the KV_COMManager that gives the profile objects; it stays its owner's and has to outlive
    /// this object.
    explicit KV_ProfileCompare(void *manager);

    /// Compares two files.
    bool Equal(KV_FileSpec &first, KV_FileSpec &second);
    /// Compares two profiles, each as its reference gives it: a file is opened, an object taken, a source
    /// asked. False when one of the two gives no profile: a reference of another kind, one without an
    /// object, a source without a profile. Both sides are brought into form all the same, the first one
    /// first.
    bool Equal(KV_ProfileRef &first, KV_ProfileRef &second);

private:
    KV_COMManager *m_manager;
};
