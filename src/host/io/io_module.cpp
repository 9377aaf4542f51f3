// The module "qvioe".
//
// Tested by tests/host/io_test.cpp
#include "host/io/io_module.h"

#include "host/host_object.h"
#include "host/io/block_file.h"
#include "host/io/file_name.h"
#include "host/io/syscalls.h"
#include "host/module_instance.h"
#include "host/rim.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

namespace qvhost {
namespace {

struct Instance : QVIOE {
    const Syscalls* calls = nullptr;
    std::map<std::string, std::shared_ptr<BlockFile>> written;  // by path
};

// What a caller of `open` holds: a file to write, or a place in one to read.
class File : public QVIOFile {
   public:
    File(QVHndlp host, std::string_view desc, std::shared_ptr<BlockFile> blocks,
         bool output) noexcept;

    [[nodiscard]] QVStatus add(std::span<const char> block);
    [[nodiscard]] QVStatus next(char** block, QVStrSize* blockLen);
    [[nodiscard]] QVStatus end() { return output_ ? blocks_->finish() : QV_OK; }

   private:
    void makeRoom(std::size_t size);

    std::shared_ptr<BlockFile> blocks_;
    const bool output_;
    std::size_t index_ = 0;  // of the block to read next
    std::unique_ptr<char[]> room_;
    std::size_t roomSize_ = 0;
    HostObject entry_;
};

QVStatus File::add(std::span<const char> block) {
    return output_ ? blocks_->append(block) : QV_UNSUPPORTED;
}

// A block that could not be read is the next one again.
QVStatus File::next(char** block, QVStrSize* blockLen) {
    if (output_) {
        return QV_UNSUPPORTED;
    }
    if (index_ == blocks_->blocks().size()) {
        return QV_IO_SHORT;
    }
    const BlockFile::Block& at = blocks_->blocks()[index_];
    makeRoom(static_cast<std::size_t>(at.length));
    if (const QVStatus status = blocks_->read(at, room_.get()); status != QV_OK) {
        return status;
    }
    ++index_;
    *block = room_.get();
    *blockLen = at.length;
    return QV_OK;
}

// Room for `size` bytes, and for at least one so that there is a pointer to give.  What was there
// is not kept.
void File::makeRoom(std::size_t size) {
    if (room_ == nullptr || size > roomSize_) {
        const std::size_t wanted = std::max<std::size_t>(size, 1);
        room_ = std::make_unique_for_overwrite<char[]>(wanted);
        roomSize_ = wanted;
    }
}

// ---- The tables ----

File* fileOf(QVIOFileh file) noexcept {
    return static_cast<File*>(file);
}

QVStatus writeBlock(QVIOFileh file, const void* block, QVStrSize blockLen) {
    if (blockLen < 0) {
        return QV_BADPARMS;
    }
    return fileOf(file)->add({static_cast<const char*>(block), static_cast<std::size_t>(blockLen)});
}

QVStatus readBlock(QVIOFileh file, char** block, QVStrSize* blockLen) {
    return fileOf(file)->next(block, blockLen);
}

QVStatus destroyFile(QVGeneric* self) {
    const std::unique_ptr<File> file(fileOf(reinterpret_cast<QVIOFileh>(self)));
    return file->end();
}

File::File(QVHndlp host, std::string_view desc, std::shared_ptr<BlockFile> blocks,
           bool output) noexcept
    : QVIOFile{{{'f', 'i', 'l', 'e'}, 0, &Rim<&destroyFile>::call},
               &Rim<&writeBlock>::call,
               &Rim<&readBlock>::call},
      blocks_(std::move(blocks)),
      output_(output),
      entry_(host, ObjectKind::FILE, generic, desc) {}

// Is this the one kind of file that there is?
bool isOffered(const QVIOOpenParms& parms) noexcept {
    return std::u32string_view(parms.device, std::size(parms.device)) == U"DISK    " &&
           (parms.mode == QVIO_OUTPUT || parms.mode == QVIO_INPUT) &&
           parms.recfm == QVIO_RECFM_BINARY && parms.access == QVIO_ACCESS_SEQUENTIAL &&
           parms.modifier == QVIO_MODIFIER_DEFAULT && parms.flags == 0;
}

QVStatus openOutput(Instance& io, const std::string& path, std::shared_ptr<BlockFile>& blocks) {
    std::shared_ptr<BlockFile>& slot = io.written[path];
    if (slot.use_count() == 1 && slot->blocks().empty()) {
        slot.reset();  // nothing is lost, and its hold on the empty file ends
    }
    std::shared_ptr<BlockFile> made;
    const QVStatus status = BlockFile::create(*io.calls, path, made);
    if (status == QV_OK) {
        slot = made;
        blocks = std::move(made);
    }
    return status;
}

QVStatus openInput(const Instance& io, const std::string& path,
                   std::shared_ptr<BlockFile>& blocks) {
    const auto found = io.written.find(path);
    if (found == io.written.end() || found->second == nullptr) {
        return QV_IO_NOTFOUND;
    }
    blocks = found->second;
    return QV_OK;
}

QVStatus openFile(QVIOEh io, const QVIOOpenParms* parms, QVJnlh, QVIOFileh* file) {
    if (parms == nullptr || parms->nameLen < 0 || parms->descLen < 0) {
        return QV_BADPARMS;
    }
    if (!isOffered(*parms)) {
        return QV_UNSUPPORTED;
    }
    const auto path = pathOf({parms->name, static_cast<std::size_t>(parms->nameLen)});
    if (!path) {
        return QV_IO_OPEN;
    }
    auto& self = *instanceOf<Instance, QVIOE>(&io->exth);
    const bool output = parms->mode == QVIO_OUTPUT;
    std::shared_ptr<BlockFile> blocks;
    const QVStatus status =
        output ? openOutput(self, *path, blocks) : openInput(self, *path, blocks);
    if (status != QV_OK) {
        return status;
    }
    const std::string_view desc(parms->desc, static_cast<std::size_t>(parms->descLen));
    *file = new File(io->exth.hndl, desc, std::move(blocks), output);
    return QV_OK;
}

}  // namespace

QVExtensionh createIo(const Syscalls& calls) noexcept {
    return makeInstance<Instance, QVIOE>("ioe ", [&calls](Instance& made) {
        made.calls = &calls;
        made.open = &Rim<&openFile>::call;
    });
}

QVExtensionh qvioeEntry(QVHndlp, QVJnlh) {
    return createIo(posixSyscalls());
}

}  // namespace qvhost
