/// @file UpdateRecord.h
/// What an output was made of, kept beside the outputs so that an unchanged one need not be made again.
#ifndef ZORTEX_UPDATE_RECORD_H
#define ZORTEX_UPDATE_RECORD_H

#include <string>
#include <vector>

#include "../TextureDescription.h"

namespace zortex
{
/// The folder for records below an output folder.
inline constexpr const char* kRecordFolder = ".zortex";

class UpdateRecord
{
public:
	/// @param relativeOutput  the output's path below the folder.
	/// @param options         what was asked for, as words.
	/// @param inputs          the file, and those that the options name.
	UpdateRecord(const std::string& outputFolder, const std::string& relativeOutput, const std::vector<std::string>& options,
	             const std::vector<std::string>& inputs);

	/// Whether the output is there, and was made from the inputs as they are now by this program with these options.
	bool isCurrent() const;

	/// Writes the record, of an output that has just been made. A failure is silent: the output is made again next time.
	void store() const;

	/// Before the output is made: an old record must not outlive it.
	void forget() const;

private:
	Json describe() const;

	std::string m_output;
	std::string m_path;
	/// Taken before the output is made, so that an input that changes meanwhile is seen.
	Json m_made;
};
} // namespace zortex

#endif // ZORTEX_UPDATE_RECORD_H
