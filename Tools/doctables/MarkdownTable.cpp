#include "DocTables.h"

namespace doctables
{
std::string markdownTable(const std::vector<Row>& rows)
{
	std::string text;
	for (std::size_t i = 0; i < rows.size(); ++i)
	{
		text += "|";
		for (const std::string& cell : rows[i])
		{
			text += " " + (cell.empty() ? "-" : cell) + " |";
		}
		text += "\n";
		if (i == 0)
		{
			text += "|";
			for (std::size_t column = 0; column < rows[0].size(); ++column)
			{
				text += "---|";
			}
			text += "\n";
		}
	}
	return text;
}
} // namespace doctables
