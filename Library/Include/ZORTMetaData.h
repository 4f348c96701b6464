/// @file ZORTMetaData.h
/// Metadata blocks and the two small containers of the metadata table.
#ifndef ZORTMETA_DATA_H
#define ZORTMETA_DATA_H

#include <utility>

#include "ZORTDefines.h"

namespace zortexture
{
/// One metadata record. It owns `data` (from array new) and copies it deeply. On disk a block is its three
/// words, little-endian, and `dataSize` bytes: 12 + dataSize bytes in all.
class ZORT_API MetaDataBlock
{
public:
	MetaDataBlock() = default;
	MetaDataBlock(const MetaDataBlock& other);
	MetaDataBlock& operator=(const MetaDataBlock& other);
	~MetaDataBlock();

	unsigned int fourCC = 0;       ///< namespace of the key; kZORTextureMagic for the library's own
	unsigned int key = 0;          ///< key within the namespace
	unsigned int dataSize = 0;     ///< bytes in `data`
	unsigned char* data = nullptr; ///< owned; null when empty
};

/// A growable array. All `capacity` slots hold constructed elements; the first `size` of them are in use.
template<typename T>
class CZORTArray
{
public:
	static constexpr unsigned int kInitialCapacity = 16;

	CZORTArray() : capacity(kInitialCapacity), data(new T[kInitialCapacity]())
	{
	}

	CZORTArray(const CZORTArray& other)
	{
		Copy(other);
	}

	CZORTArray& operator=(const CZORTArray& other)
	{
		if (this != &other)
		{
			Copy(other);
		}
		return *this;
	}

	virtual ~CZORTArray()
	{
		delete[] data;
	}

	/// Removes the element at `index` and keeps the order of the others. An index past the last element drops the last
	/// one. Returns 1 when the array is empty, else 0.
	virtual unsigned int Remove(unsigned int index)
	{
		if (size == 0)
		{
			return 1;
		}
		if (index == size - 1)
		{
			return RemoveLast();
		}
		--size;
		for (unsigned int i = index; i < size; ++i)
		{
			data[i] = data[i + 1];
		}
		return 0;
	}

	/// Drops the last element; its slot keeps what it owns until it is overwritten. Returns 1 when the array is
	/// empty, else 0.
	virtual unsigned int RemoveLast()
	{
		if (size == 0)
		{
			return 1;
		}
		--size;
		return 0;
	}

	/// Makes room for n elements, at least doubling. Always returns 0.
	unsigned int SetCapacity(unsigned int n)
	{
		if (capacity >= n)
		{
			return 0;
		}
		const unsigned int doubled = capacity * 2;
		Reallocate(*this, doubled > n ? doubled : n);
		return 0;
	}

	/// Appends a copy of `element` and returns its index. `element` may be one of this array's own.
	unsigned int Append(const T& element)
	{
		const unsigned int index = size;
		if (size == capacity)
		{
			T copy(element); // growing releases the slot that `element` may refer to
			SetCapacity(size + 1);
			data[index] = std::move(copy);
		}
		else if (&data[index] != &element)
		{
			data[index] = element;
		}
		++size;
		return index;
	}

	void Swap(CZORTArray& other) noexcept
	{
		std::swap(size, other.size);
		std::swap(capacity, other.capacity);
		std::swap(data, other.data);
	}

	/// Replaces the content by a deep copy of `other`, capacity included.
	void Copy(const CZORTArray& other)
	{
		Reallocate(other, other.capacity);
	}

	T& operator[](unsigned int index)
	{
		return data[index];
	}

	const T& operator[](unsigned int index) const
	{
		return data[index];
	}

	unsigned int size = 0;     ///< elements in use
	unsigned int capacity = 0; ///< constructed slots
	T* data = nullptr;         ///< owned, from array new

private:
	/// Takes over the elements of `source` in a new array of `newCapacity` slots.
	void Reallocate(const CZORTArray& source, unsigned int newCapacity)
	{
		T* const fresh = new T[newCapacity]();
		const unsigned int count = source.size;
		try
		{
			for (unsigned int i = 0; i < count; ++i)
			{
				fresh[i] = source.data[i];
			}
		}
		catch (...)
		{
			delete[] fresh;
			throw;
		}
		delete[] data;
		data = fresh;
		size = count;
		capacity = newCapacity;
	}
};

/// A map of a handful of entries in order of insertion, with linear search. `keys` and `values` run in parallel.
template<typename K, typename V>
class CZORTMap
{
public:
	CZORTMap() = default;
	CZORTMap(const CZORTMap& other) = default;
	~CZORTMap() = default;

	/// Replaces both arrays or, when memory runs out, neither.
	CZORTMap& operator=(const CZORTMap& other)
	{
		if (this != &other)
		{
			CZORTArray<K> newKeys(other.keys);
			CZORTArray<V> newValues(other.values);
			keys.Swap(newKeys);
			values.Swap(newValues);
			size = other.size;
		}
		return *this;
	}

	/// The value of `key`; a default value is inserted when there is none.
	V& operator[](K key)
	{
		const unsigned int index = Find(key);
		if (index < size)
		{
			return values[index];
		}
		values.Append(V());
		try
		{
			keys.Append(key);
		}
		catch (...)
		{
			values.RemoveLast();
			throw;
		}
		++size;
		return values[size - 1];
	}

	/// Removes `key`; the last entry takes its place. Returns 1 when there is no such key, else 0.
	unsigned int Remove(K key)
	{
		const unsigned int index = Find(key);
		if (index >= size)
		{
			return 1;
		}
		--size;
		keys[index] = keys[size];
		keys.RemoveLast();
		if (index != size)
		{
			values[index] = values[size];
		}
		values.RemoveLast();
		return 0;
	}

	/// The index of `key`, or `size` when there is none. Inserts nothing.
	unsigned int Find(const K& key) const
	{
		unsigned int index = 0;
		while (index < size && !(keys[index] == key))
		{
			++index;
		}
		return index;
	}

	CZORTArray<K> keys;
	CZORTArray<V> values;
	unsigned int size = 0; ///< entries; equal to keys.size and values.size
};

/// The metadata of a texture: blocks by fourCC, then by key.
using MetaDataMap = CZORTMap<unsigned int, CZORTMap<unsigned int, MetaDataBlock>>;
} // namespace zortexture

#endif // ZORTMETA_DATA_H
