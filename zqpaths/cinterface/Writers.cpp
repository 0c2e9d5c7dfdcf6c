// The functions for C that write sets. What they do, PathSetWriter does.

#include <memory>
#include <string>

#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/cinterface/Failures.hpp"
#include "zqpaths/zqpaths.h"

struct zqp_writer {
    zqpaths::PathSetWriter opened;
};

namespace zqpaths::cinterface {
namespace {

PathSetWriter& given(const Call& call, zqp_writer* writer) {
    call.requireGiven(writer, "writer");
    return writer->opened;
}

PathSetWriter::Mode modeOf(const Call& call, unsigned how) {
    switch (how & ~unsigned{ZQP_PACKED}) {
        case ZQP_CREATE:
            return PathSetWriter::Mode::kCreate;
        case ZQP_REPLACE:
            return PathSetWriter::Mode::kReplace;
        case ZQP_APPEND:
            return PathSetWriter::Mode::kAppend;
        default:
            call.refuse("there is no way to write numbered " + std::to_string(how));
    }
}

PathSetWriter::Form formOf(unsigned how) noexcept {
    return (how & ZQP_PACKED) != 0 ? PathSetWriter::Form::kPacked : PathSetWriter::Form::kImage;
}

}  // namespace
}  // namespace zqpaths::cinterface

using zqpaths::PathSetWriter;
using zqpaths::cinterface::Call;
using zqpaths::cinterface::formOf;
using zqpaths::cinterface::given;
using zqpaths::cinterface::modeOf;
using zqpaths::cinterface::statusOf;

zqp_status zqp_writer_open(const char* file, unsigned how, zqp_writer** writer) {
    return statusOf(__func__, [&](const Call& call) {
        call.requireGiven(writer, "writer");
        *writer = nullptr;
        call.requireGiven(file, "file");
        PathSetWriter opened(file, modeOf(call, how), formOf(how));
        *writer = std::make_unique<zqp_writer>(zqp_writer{std::move(opened)}).release();
    });
}

zqp_status zqp_writer_add(zqp_writer* writer, const char* path, std::size_t length) {
    return statusOf(__func__, [&](const Call& call) {
        given(call, writer).add(call.bytes(path, length, "path"));
    });
}

std::uint64_t zqp_writer_size(const zqp_writer* writer) {
    return writer == nullptr ? 0 : writer->opened.size();
}

zqp_status zqp_writer_commit(zqp_writer* writer) {
    return statusOf(__func__, [&](const Call& call) { given(call, writer).commit(); });
}

void zqp_writer_close(zqp_writer* writer) {
    delete writer;
}
