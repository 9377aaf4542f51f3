// Ends a reading that may wait for ever, from another thread.
#pragma once

namespace qvej {

class ReadingStop {
   public:
    ReadingStop();  // throws Error
    ~ReadingStop();
    ReadingStop(const ReadingStop&) = delete;
    ReadingStop& operator=(const ReadingStop&) = delete;

    // From now on a reading ends at once, as if its input did.  On any thread.
    void stop() const;

    // Waits until the descriptor can be read.  False: the reading is to end.
    [[nodiscard]] bool waitFor(int descriptor) const;

   private:
    int event_;
};

}  // namespace qvej
