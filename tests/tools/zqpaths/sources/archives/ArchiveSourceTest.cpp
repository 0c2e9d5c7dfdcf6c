#include "tools/zqpaths/sources/archives/ArchiveSource.hpp"

#include <archive.h>
#include <archive_entry.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

using test_support::TemporaryTree;
using testing::ElementsAre;
using Names = std::vector<std::string>;

struct Form {
    const char* name;
    ArchiveFormat format;
    std::function<int(archive*)> setFormat;
    std::function<int(archive*)> addFilter;
};

const std::vector<Form>& forms() {
    static const std::vector<Form> all{
        {"ustar", ArchiveFormat::kTar, archive_write_set_format_ustar,
         archive_write_add_filter_none},
        {"gnutar", ArchiveFormat::kTar, archive_write_set_format_gnutar,
         archive_write_add_filter_none},
        {"pax", ArchiveFormat::kTar, archive_write_set_format_pax, archive_write_add_filter_none},
        {"gzip", ArchiveFormat::kTar, archive_write_set_format_pax, archive_write_add_filter_gzip},
        {"bzip2", ArchiveFormat::kTar, archive_write_set_format_pax,
         archive_write_add_filter_bzip2},
        {"xz", ArchiveFormat::kTar, archive_write_set_format_pax, archive_write_add_filter_xz},
        {"zstd", ArchiveFormat::kTar, archive_write_set_format_pax, archive_write_add_filter_zstd},
        {"zip", ArchiveFormat::kZip, archive_write_set_format_zip, archive_write_add_filter_none}};
    return all;
}

/// Names that end with a separator are directories; files have some content.
std::string archiveOf(const Form& form, const Names& names) {
    const std::unique_ptr<archive, int (*)(archive*)> made(archive_write_new(), archive_write_free);
    std::string bytes(std::size_t{1} << 22, '\0');
    std::size_t size = 0;
    form.setFormat(made.get());
    form.addFilter(made.get());
    archive_write_set_bytes_per_block(made.get(), 512);
    if (archive_write_open_memory(made.get(), bytes.data(), bytes.size(), &size) != ARCHIVE_OK)
        throw std::runtime_error(archive_error_string(made.get()));
    for (const std::string& name : names) {
        const std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                             archive_entry_free);
        const std::string content = name.ends_with('/') ? "" : "content of " + name;
        archive_entry_copy_pathname(entry.get(), name.c_str());
        archive_entry_set_filetype(entry.get(), name.ends_with('/') ? AE_IFDIR : AE_IFREG);
        archive_entry_set_perm(entry.get(), 0644);
        archive_entry_set_size(entry.get(), static_cast<la_int64_t>(content.size()));
        archive_write_header(made.get(), entry.get());
        archive_write_data(made.get(), content.data(), content.size());
    }
    if (archive_write_close(made.get()) != ARCHIVE_OK)
        throw std::runtime_error(archive_error_string(made.get()));
    bytes.resize(size);
    return bytes;
}

Names namesIn(PathSource& source) {
    Names names;
    source.visit([&names](std::string_view path) { names.emplace_back(path); });
    return names;
}

class ArchiveSourceTest : public testing::Test {
protected:
    Names read(const std::string& bytes, ArchiveFormat format) {
        ArchiveSource source(tree_.addFile("archive", bytes), format);
        return namesIn(source);
    }

    std::string refusalOf(const std::string& bytes, ArchiveFormat format) {
        try {
            read(bytes, format);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.status(), ExitStatus::kFailed);
            return std::string(failure.what()).substr(tree_.pathOf("archive: ").size());
        }
        return "none";
    }

    TemporaryTree tree_;
};

TEST_F(ArchiveSourceTest, givesWhatIsNoDirectoryInItsOrder) {
    for (const Form& form : forms())
        EXPECT_THAT(
            read(archiveOf(form, {"b", "dir/", "dir/x y", "./a", "/root", "b"}), form.format),
            ElementsAre("b", "dir/x y", "./a", "/root", "b"))
            << form.name;
}

TEST_F(ArchiveSourceTest, givesNamesAsTheyStandThere) {
    const Names names{"caf\xC3\xA9",        "cafe\xCC\x81", "\xFF\xFE", "new\nline",
                      std::string(90, 'l'), "\\",           "\x01"};
    for (const Form& form : forms())
        EXPECT_EQ(read(archiveOf(form, names), form.format), names) << form.name;
}

TEST_F(ArchiveSourceTest, givesLongNames) {
    const Names names{std::string(100, 'a'), std::string(101, 'b'), std::string(256, 'c') + "/d",
                      std::string(5000, 'e')};
    for (const Form& form : forms()) {
        if (std::string_view(form.name) == "ustar") continue;  // it has none
        EXPECT_EQ(read(archiveOf(form, names), form.format), names) << form.name;
    }
}

TEST_F(ArchiveSourceTest, givesNamesWhereverABlockOfTheInputEnds) {
    Names names;
    for (int i = 0; i < 3000; ++i) names.push_back("folder/file number " + std::to_string(i));
    for (const Form& form : forms())
        EXPECT_EQ(read(archiveOf(form, names), form.format), names) << form.name;
}

TEST_F(ArchiveSourceTest, recognizesArchivesByWhatIsInThem) {
    for (const Form& form : forms()) {
        const auto source =
            ArchiveSource::recognize(tree_.addFile("archive", archiveOf(form, {"a"})));
        ASSERT_NE(source, nullptr) << form.name;
        EXPECT_THAT(namesIn(*source), ElementsAre("a")) << form.name;
    }
    for (const std::string_view bytes : {std::string_view(), std::string_view("text\n"),
                                         std::string_view("PK"), std::string_view("\x1F\x8B\x08")})
        EXPECT_EQ(ArchiveSource::recognize(tree_.addFile("archive", bytes)), nullptr) << bytes;
}

TEST_F(ArchiveSourceTest, refusesWhatIsNotOfTheFormat) {
    EXPECT_EQ(refusalOf("text\n", ArchiveFormat::kTar), "is no tar");
    EXPECT_EQ(refusalOf("", ArchiveFormat::kTar), "is no tar");
    EXPECT_EQ(refusalOf("", ArchiveFormat::kZip), "is no zip");
    EXPECT_EQ(refusalOf(archiveOf(forms().front(), {"a"}), ArchiveFormat::kZip), "is no zip");
    EXPECT_EQ(refusalOf(archiveOf(forms().back(), {"a"}), ArchiveFormat::kTar), "is no tar");
    EXPECT_THROW(ArchiveSource(tree_.path(), ArchiveFormat::kTar), Failure);
    EXPECT_THROW(ArchiveSource(tree_.pathOf("none"), ArchiveFormat::kTar), Failure);
}

TEST_F(ArchiveSourceTest, givesAllOrRefusesWhatIsCutShort) {
    const Names names{"a", "dir/", "dir/b", "cafe\xCC\x81"};
    const Names expected{"a", "dir/b", "cafe\xCC\x81"};
    for (const Form& form : forms()) {
        const std::string whole = archiveOf(form, names);
        std::size_t refusedCount = 0;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::string cut = whole.substr(0, length);
            if (refusalOf(cut, form.format) != "none")
                ++refusedCount;
            else
                ASSERT_EQ(read(cut, form.format), expected) << form.name << ' ' << length;
        }
        // What follows the end of a tar says nothing.
        EXPECT_GT(refusedCount, whole.size() / 4) << form.name;
        if (form.format == ArchiveFormat::kZip) {
            EXPECT_EQ(refusedCount, whole.size());
        }
    }
}

TEST_F(ArchiveSourceTest, refusesATarWithoutItsEnd) {
    const Form& ustar = forms().front();
    const std::string whole = archiveOf(ustar, {"a", "b"});
    const std::size_t end = 4 * 512;  // two headers with a block of content each
    EXPECT_EQ(refusalOf(whole.substr(0, end), ArchiveFormat::kTar),
              "is cut short: its end is missing");
    EXPECT_EQ(refusalOf(whole.substr(0, end + 512), ArchiveFormat::kTar), "none");
}

TEST_F(ArchiveSourceTest, refusesDamagedArchives) {
    for (const Form& form : forms()) {
        std::string bytes = archiveOf(form, {"a", std::string(80, 'b'), "c"});
        std::size_t refusedCount = 0;
        const std::size_t step = 7;
        for (std::size_t place = 0; place < bytes.size(); place += step) {
            bytes[place] = static_cast<char>(~bytes[place]);
            if (refusalOf(bytes, form.format) != "none") ++refusedCount;
            bytes[place] = static_cast<char>(~bytes[place]);
        }
        EXPECT_GT(refusedCount, 0U) << form.name;
    }
}

}  // namespace
}  // namespace zqpaths::program
