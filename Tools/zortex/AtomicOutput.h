/// @file AtomicOutput.h
/// Output files that are there whole or not at all.
#ifndef ZORTEX_ATOMIC_OUTPUT_H
#define ZORTEX_ATOMIC_OUTPUT_H

#include <string>

namespace zortex
{
/// A temporary file beside the target, with the target's extension, that takes the target's place when it is complete.
/// Without commit() it is removed, and the target stays what it was.
class AtomicOutput
{
public:
	/// Creates the temporary file, empty. Refuses a target that cannot be written.
	explicit AtomicOutput(const std::string& target);
	AtomicOutput(const AtomicOutput&) = delete;
	AtomicOutput& operator=(const AtomicOutput&) = delete;
	~AtomicOutput();

	/// The file to write to.
	const std::string& path() const;

	/// Bytes in the temporary file at the moment.
	unsigned long long size() const;

	/// Moves the temporary file to the target.
	void commit();

private:
	std::string m_target;
	std::string m_final; ///< the target, with a symbolic link followed
	std::string m_temporary;
	bool m_isPending = false;
};
} // namespace zortex

#endif // ZORTEX_ATOMIC_OUTPUT_H
