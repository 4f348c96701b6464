/// @file AtomicOutput.h
/// Output files that are there whole or not at all.
#ifndef ZORTEX_ATOMIC_OUTPUT_H
#define ZORTEX_ATOMIC_OUTPUT_H

#include <string>
#include <sys/types.h>

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

/// Whether a file name is that of a temporary file of this program. It holds the machine and the process that made it.
bool isTemporaryName(const std::string& name);

/// Removes what a process left for one output.
void removeTemporaryOf(const std::string& target, pid_t process);

/// Removes the temporary files in and below a folder that no process works on any more: those of this machine whose process is
/// gone, and those of other machines that are more than a day old.
void removeStaleTemporaries(const std::string& folder);
} // namespace zortex

#endif // ZORTEX_ATOMIC_OUTPUT_H
