#include "tests/zqpaths/hostile/HostileFiles.hpp"

#include "tests/support/SetFiles.hpp"
#include "zqpaths/file/SetFileWriter.hpp"

namespace hostile {

using namespace zqpaths;

std::vector<HostileFile> hostileFiles() {
    Files files;
    addHostileDirectories(files);
    addHostileTries(files);
    addHostileIndexes(files);
    addHostileCodes(files);
    addHostileForms(files);
    addHostileManifests(files);
    return files;
}

void writeSegment(const std::string& file, const std::string& image, Claim claim) {
    SetFileWriter writer(file, SetFileWriter::Mode::kReplace);
    writer.append({SegmentForm::kImage, claim.pathCount, claim.textSize, 0, bytesOf(image)});
    writer.commit();
}

void writePacked(const std::string& file, const std::string& treeString, const std::string& form,
                 Claim claim) {
    SetFileWriter writer(file, SetFileWriter::Mode::kReplace);
    const std::string bytes = treeString + form;
    writer.append(
        {SegmentForm::kPacked, claim.pathCount, claim.textSize, treeString.size(), bytesOf(bytes)});
    writer.commit();
}

std::string treeStringBeside(const std::string& file) {
    return file + ".tree";
}

}  // namespace hostile
