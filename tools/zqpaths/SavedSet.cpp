#include "tools/zqpaths/SavedSet.hpp"

#include <exception>
#include <new>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSetClass.hpp"

namespace zqpaths {

PathSet openSet(const std::string& file) {
    return restoreSet(file, loadFields(file));
}

korvex::Array loadFields(const std::string& file) {
    return fieldsOf(file, SetFile::load(file));
}

korvex::Array fieldsOf(const std::string& file, SetFile::Content content) {
    if (content.className != kPathSetClass)
        throw failureAt(file, "holds an object of " + content.className + ", no set of paths");
    return std::move(content.fields);
}

PathSet restoreSet(const std::string& file, korvex::Array fields) {
    pathSetSession();  // a library that cannot be loaded is no damage of the set
    try {
        return PathSet::restored(std::move(fields), file);
    } catch (const Failure&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw failureAt(file, error.what(), ExitStatus::kDamaged);
    }
}

}  // namespace zqpaths
