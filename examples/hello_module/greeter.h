#pragma once

#include <string>

/// What both sides know of each other: a host asks for the kind "Greeter" and the interface "IGreeter".
class IGreeter {
public:
    IGreeter() = default;
    IGreeter(const IGreeter &) = delete;
    IGreeter &operator=(const IGreeter &) = delete;
    /// The object is the caller's, who gives it back by this before the manager goes.
    virtual void Release() = 0;
    /// A line for a name, UTF-8. Throws KV_Exception (KV_ERR_BAD_INPUT) for an empty one.
    virtual std::string Greet(const std::string &name) = 0;

protected:
    virtual ~IGreeter() = default;
};
