#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

namespace marnoth {

/// Allocator for a deque whose blocks must not go back to the system while its owner plays: a block that the
/// container gives up is kept and handed out again, and all of them go when the last container of the pool
/// does. So the container allocates only to grow beyond its largest size so far.
///
/// Only blocks of one size are kept, the first size of `T` asked for; the container's directory is left to
/// the system. Not for use by several threads at a time.
template <class T>
class RecyclingAllocator {
public:
    using value_type = T;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_copy_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;
    using is_always_equal = std::false_type;

    RecyclingAllocator() : pool_(std::make_shared<Pool>()) {}
    /// The directory of a deque is made of pointers and asks for many sizes: it gets no pool.
    template <class U>
    RecyclingAllocator(const RecyclingAllocator<U>&) {}

    RecyclingAllocator select_on_container_copy_construction() const { return {}; }

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
        if (pool_)
            if (void* kept = pool_->take(count * sizeof(T))) return static_cast<T*>(kept);
        return static_cast<T*>(::operator new(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept {
        if (!pool_ || !pool_->keep(block, count * sizeof(T))) ::operator delete(block);
    }

    friend bool operator==(const RecyclingAllocator& a, const RecyclingAllocator& b) {
        return a.pool_ == b.pool_;
    }

private:
    struct FreeBlock {
        FreeBlock* next;
    };

    class Pool {
    public:
        Pool() = default;
        Pool(const Pool&) = delete;
        Pool& operator=(const Pool&) = delete;
        ~Pool() {
            while (free_) ::operator delete(pop());
        }

        void* take(std::size_t bytes) {
            if (blockBytes_ == 0 && bytes >= sizeof(FreeBlock)) blockBytes_ = bytes;
            return bytes == blockBytes_ && free_ ? pop() : nullptr;
        }
        bool keep(void* block, std::size_t bytes) noexcept {
            if (bytes != blockBytes_) return false;
            free_ = new (block) FreeBlock{free_};
            return true;
        }

    private:
        void* pop() {
            FreeBlock* block = free_;
            free_ = block->next;
            return block;
        }

        std::size_t blockBytes_ = 0;
        FreeBlock* free_ = nullptr;
    };

    std::shared_ptr<Pool> pool_;
};

}  // namespace marnoth
