#pragma once
// NamedObject is an object for object arrays: nothing but the name of its class.

#include <memory>
#include <string>
#include <utility>

#include "host/arrays/kxArray.hpp"

class NamedObject : public kxObject {
public:
    explicit NamedObject(std::string className) : className_(std::move(className)) {}
    const std::string& className() const override { return className_; }

private:
    std::string className_;
};

inline std::shared_ptr<kxObject> circle() {
    return std::make_shared<NamedObject>("korvex.shapes.Circle");
}
