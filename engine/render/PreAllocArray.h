#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace marnoth {

/// An array of fixed capacity whose full state is a silent drop: nothing in it can grow or throw, so the
/// audio thread may fill it. Storage is taken once, in advance; without memory for it the capacity stays 0.
/// Never owns what pointer elements point to.
template <class T>
class CPreAllocArray {
public:
    CPreAllocArray() = default;
    explicit CPreAllocArray(std::int32_t capacity)
        : data_(new (std::nothrow) T[static_cast<std::size_t>(capacity)]()),
          capacity_(data_ ? capacity : 0) {}

    std::int32_t GetSize() const { return count_; }
    std::int32_t GetCapacity() const { return capacity_; }
    T& operator[](std::int32_t index) { return data_[static_cast<std::size_t>(index)]; }
    const T& operator[](std::int32_t index) const { return data_[static_cast<std::size_t>(index)]; }
    T* begin() { return data_.get(); }
    T* end() { return data_.get() + count_; }
    const T* begin() const { return data_.get(); }
    const T* end() const { return data_.get() + count_; }

    /// Forgets the items; frees nothing.
    void RemoveAll() { count_ = 0; }

    /// Appends `item`, or drops it when the array is full.
    void Add(T item) {
        if (count_ < capacity_) data_[static_cast<std::size_t>(count_++)] = std::move(item);
    }

    /// Puts `item` in front of the one at `index`, clamped to the ends; drops it when the array is full.
    void InsertAt(std::int32_t index, T item) {
        if (count_ >= capacity_) return;
        T* place = begin() + std::clamp(index, 0, count_);
        std::move_backward(place, end(), end() + 1);
        *place = std::move(item);
        ++count_;
    }

    /// Takes the item at `index` out and closes the gap.
    void RemoveAt(std::int32_t index) {
        std::move(begin() + index + 1, end(), begin() + index);
        --count_;
    }

private:
    std::unique_ptr<T[]> data_;
    std::int32_t count_ = 0;
    std::int32_t capacity_ = 0;
};

}  // namespace marnoth
