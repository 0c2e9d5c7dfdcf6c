#pragma once
// COSClassInfo is what a library implements to offer a class: its name, its methods and properties,
// and how its instances come and go.
//
// An instance is what the class keeps for an object of the host; the host passes it around as
// `void*` and never looks into it.
//
// The order of the virtual operations is part of the interface between host and libraries.

#include "host/Export.hpp"
#include "host/kobj/COSDataType.hpp"
#include "host/kobj/COSInterface.hpp"
#include "host/kobj/COSValue.hpp"

namespace kobj {

class COSClass;

/// The caller that asks a class to describe itself.
class COSClient {};

class KORVEX_API COSClassInfo {
public:
    COSClassInfo();
    COSClassInfo(const COSClassInfo&) = delete;
    COSClassInfo& operator=(const COSClassInfo&) = delete;
    virtual ~COSClassInfo();

    /// The short name.
    virtual const char* getClassName() const = 0;

    /// Adds methods and properties. Called once, before others see the class.
    virtual void initializeClass(COSClass* newClass, const COSClient* client) = 0;

    /// A new instance for `object`; the constructor method or customLoad fills it afterwards.
    virtual void* allocateInstance(COSInterface* object) = 0;

    /// Frees an instance; null is ignored.
    virtual void deallocateInstance(COSInterface* object, void* instance) = 0;

    /// True for property names that nobody may add.
    virtual bool isPropertyNameReservedByThisClass(const char* propertyName) const;
    /// Whether objects of one class may be values of another's properties.
    virtual bool canOtherClassContainThisClass(const COSClass* otherClass) const;
    virtual bool canThisClassContainOtherClass(const COSClass* otherClass) const;

    /// How objects are passed: 0 by reference, 1 by value, 2 by reference or value.
    virtual int getPassingMode() const;
    /// True if the passing mode is 0 or 2.
    virtual bool canBePassedByReference() const;

    /// Called after an object has been loaded.
    virtual void instanceLoaded(COSInterfacePtr& object);

    /// Sets `saved` to what is to be stored for the object and returns true; or returns false, and
    /// the host stores the outputs of the object's method "serialize".
    virtual bool customSave(COSInterfacePtr& object, COSValue& saved);

    /// Fills a new object from a stored value.
    virtual void customLoad(COSInterfacePtr& object, COSValue saved, COSDataTypePtr savedType);
};

}  // namespace kobj
