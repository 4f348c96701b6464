#include "CommandLineDocs.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>

#include "AtomicOutput.h"
#include "FormatCapabilities.h"
#include "FormatNames.h"
#include "Presets.h"
#include "Refusal.h"
#include "TextureFile.h"

namespace zortex
{
namespace
{
using Commands = std::vector<const CLI::App*>;
using Options = std::vector<const CLI::Option*>;

/// The commands that --help lists.
Commands listedCommands(const CLI::App& program)
{
	Commands commands = program.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
	return commands;
}

/// The options of a command in one group, or its positional arguments.
Options optionsOf(const CLI::App& command, const std::string& group)
{
	return command.get_options([&group](const CLI::Option* option) { return option->nonpositional() && option->get_group() == group; });
}

Options argumentsOf(const CLI::App& command)
{
	return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

bool takesValue(const CLI::Option& option)
{
	return option.get_items_expected_max() != 0;
}

/// The name of an option's value. What checks it stands behind a colon outside of brackets, and is left out.
std::string valueText(const CLI::Option& option)
{
	const std::string text = option.get_type_name();
	int depth = 0;
	for (std::size_t i = 0; i < text.size(); ++i)
	{
		depth += text[i] == '[' ? 1 : text[i] == ']' ? -1 : 0;
		if (text[i] == ':' && depth == 0)
		{
			return text.substr(0, i);
		}
	}
	return text;
}

/// "--format NAME", "-h,--help".
std::string optionText(const CLI::Option& option)
{
	const std::string value = valueText(option);
	std::string text = option.get_name(false, true);
	return takesValue(option) && !value.empty() ? text + " " + value : text;
}

/// The text that ends the help of a command; a command without one shows the program's.
std::string footerOf(const CLI::App& program, const CLI::App& command)
{
	return command.get_footer() == program.get_footer() ? "" : command.get_footer();
}

std::string descriptionOf(const CLI::Option& option)
{
	const std::string standard = option.get_default_str();
	return option.get_description() + (standard.empty() ? "" : " (default: " + standard + ")");
}

/// "zortex convert [OPTIONS] IN OUT".
std::string synopsis(const CLI::App& program, const CLI::App& command)
{
	std::string text = program.get_name() + " " + command.get_name() + " [OPTIONS]";
	for (const CLI::Option* argument : argumentsOf(command))
	{
		std::string name = argument->get_name(true);
		const bool isOne = argument->get_items_expected_max() <= 1 || name.find("...") != std::string::npos;
		name += isOne ? "" : "...";
		text += argument->get_required() ? " " + name : " [" + name + "]";
	}
	return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
	for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
	{
		text.replace(at, from.size(), to);
	}
	return text;
}

/// Text of a manual page: hyphens that can be copied, no line that looks like a request.
std::string manText(const std::string& text)
{
	std::string escaped = replaced(replaced(text, "\\", "\\e"), "-", "\\-");
	escaped = replaced(replaced(escaped, "\n.", "\n\\&."), "\n'", "\n\\&'");
	return !escaped.empty() && (escaped[0] == '.' || escaped[0] == '\'') ? "\\&" + escaped : escaped;
}

std::string manLiteral(const std::string& text)
{
	return text.empty() ? "" : ".PP\n.nf\n" + manText(text) + "\n.fi\n";
}

std::string manOptions(const CLI::App& command)
{
	std::string text;
	for (const CLI::Option* argument : argumentsOf(command))
	{
		text += ".TP\n.B " + manText(argument->get_name(true)) + "\n" + manText(descriptionOf(*argument)) + "\n";
	}
	for (const std::string& group : command.get_groups())
	{
		const Options options = optionsOf(command, group);
		text += options.empty() ? "" : ".PP\n.I " + manText(group) + ":\n";
		for (const CLI::Option* option : options)
		{
			text += ".TP\n.B " + manText(optionText(*option)) + "\n" + manText(descriptionOf(*option)) + "\n";
		}
	}
	return text;
}

std::string manPage(const CLI::App& program)
{
	std::string text = ".TH ZORTEX 1 \"\" \"zortex " ZORTEXLIB_VERSION_STRING "\" \"User Commands\"\n";
	text += ".SH NAME\n" + program.get_name() + " \\- convert pictures into GPU textures and back\n.SH SYNOPSIS\n";
	for (const CLI::App* command : listedCommands(program))
	{
		text += ".B " + manText(synopsis(program, *command)) + "\n.br\n";
	}
	text += ".SH DESCRIPTION\n" + manText(program.get_description()) + "\n" + manLiteral(program.get_footer());
	text += ".SH OPTIONS\n" + manOptions(program) + ".SH COMMANDS\n";
	for (const CLI::App* command : listedCommands(program))
	{
		text += ".SS " + manText(command->get_name()) + "\n" + manText(command->get_description()) + ".\n" + manOptions(*command) +
		        manLiteral(footerOf(program, *command));
	}
	return text;
}

/// Text of a cell of a table.
std::string cellText(const std::string& text)
{
	return replaced(replaced(text, "|", "\\|"), "\n", " ");
}

std::string markdownOptions(const CLI::App& command)
{
	std::string text;
	const auto addTable = [&text](const std::string& title, const std::string& rows)
	{
		text += rows.empty() ? "" : "\n| " + title + " | |\n|---|---|\n" + rows;
	};
	std::string rows;
	for (const CLI::Option* argument : argumentsOf(command))
	{
		rows += "| `" + argument->get_name(true) + "` | " + cellText(descriptionOf(*argument)) + " |\n";
	}
	addTable("argument", rows);
	for (const std::string& group : command.get_groups())
	{
		rows.clear();
		for (const CLI::Option* option : optionsOf(command, group))
		{
			rows += "| `" + cellText(optionText(*option)) + "` | " + cellText(descriptionOf(*option)) + " |\n";
		}
		addTable(group, rows);
	}
	return text;
}

std::string markdownPage(const CLI::App& program)
{
	const auto literal = [](const std::string& text)
	{
		return text.empty() ? "" : "\n```text\n" + text + "\n```\n";
	};
	std::string text = "# The command line of " + program.get_name() +
	                   "\n\n<!-- Written by the build target doc_tables from the program's own options. Not edited by hand. -->\n\n" +
	                   program.get_description() + " The same text is the manual page `man " + program.get_name() + "`.\n" +
	                   literal(program.get_footer()) + markdownOptions(program);
	for (const CLI::App* command : listedCommands(program))
	{
		text += "\n## " + command->get_name() + "\n\n" + command->get_description() + ".\n" + literal(synopsis(program, *command)) +
		        markdownOptions(*command) + literal(footerOf(program, *command));
	}
	return text;
}

/// The names of a table's rows, one after the other.
template<typename Rows, typename Name>
std::string wordsOfRows(const Rows& rows, Name name)
{
	std::string words;
	for (const auto& row : rows)
	{
		const std::string word(name(row));
		words += (words.empty() || word.empty() ? "" : " ") + word;
	}
	return words;
}

/// The words that an option takes, for those that take a few; several options of different commands may share a name.
std::string wordsOf(const std::string& option)
{
	const auto itself = [](std::string_view name)
	{
		return name;
	};
	if (option == "--format" || option == "--alpha-format")
	{
		return wordsOfRows(compressedFormats(), [](const CompressedFormat& row) { return row.codec->encodes ? row.name : ""; }) +
		       " rgba8888 rgb888 rg88 r8 rgb565 rgba4444 rgba5551 rgba16 rgba16f rgba32f";
	}
	if (option == "--type")
	{
		return wordsOfRows(kChannelTypeNames, itself);
	}
	if (option == "--quality")
	{
		return wordsOfRows(kQualityNames, itself);
	}
	if (option == "--preset")
	{
		return wordsOfRows(presets(), [](const Preset& row) { return row.name; });
	}
	if (option == "--to")
	{
		return wordsOfRows(containers(), [](const Container& row) { return row.writes ? row.extension : ""; });
	}
	struct Words
	{
		const char* option;
		const char* words;
	};
	static constexpr Words kWords[] = {
	    {"--space", "linear srgb"},
	    {"--input-space", "linear srgb"},
	    {"--filter", "nearest linear cubic"},
	    {"--mip-filter", "nearest linear cubic"},
	    {"--flip", "x y z"},
	    {"--rotate", "90 180 270 -90"},
	    {"--legacy", "gl d3d dxgi openvg"},
	    {"--mode", "colour tolerance blend"},
	};
	for (const Words& entry : kWords)
	{
		if (option == entry.option)
		{
			return entry.words;
		}
	}
	return {};
}

/// All names of an option: "-h", "--help".
std::vector<std::string> namesOf(const CLI::Option& option)
{
	std::vector<std::string> names;
	for (const std::string& name : option.get_snames())
	{
		names.push_back("-" + name);
	}
	for (const std::string& name : option.get_lnames())
	{
		names.push_back("--" + name);
	}
	return names;
}

std::string joinedNames(const CLI::App& command)
{
	std::string text;
	for (const CLI::Option* option : command.get_options([](const CLI::Option* candidate) { return candidate->nonpositional(); }))
	{
		for (const std::string& name : namesOf(*option))
		{
			text += (text.empty() ? "" : " ") + name;
		}
	}
	return text;
}

std::string bashCompletion(const CLI::App& program)
{
	std::string commandNames;
	std::string cases;
	std::vector<std::pair<std::string, std::string>> words;
	for (const CLI::App* command : listedCommands(program))
	{
		commandNames += command->get_name() + " ";
		cases += "\t" + command->get_name() + ") options=\"" + joinedNames(*command) + "\" ;;\n";
		for (const CLI::Option* option : command->get_options())
		{
			for (const std::string& name : namesOf(*option))
			{
				const std::pair<std::string, std::string> entry(name, wordsOf(name));
				if (!entry.second.empty() && std::find(words.begin(), words.end(), entry) == words.end())
				{
					words.push_back(entry);
				}
			}
		}
	}
	std::string values;
	for (const auto& [name, list] : words)
	{
		values.append("\t").append(name).append(") words=\"").append(list).append("\" ;;\n");
	}
	return "# Completion of " + program.get_name() + " for bash. Written by '" + program.get_name() + R"( generate bash'.
_zortex() {
	local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options= words= word= i
	COMPREPLY=()
	for ((i = 1; i < COMP_CWORD; ++i)); do
		if [[ ${COMP_WORDS[i]} != -* ]]; then
			word=${COMP_WORDS[i]}
			break
		fi
	done
	case $word in
	'') options=")" +
	       commandNames + joinedNames(program) + "\" ;;\n" + cases + "\tesac\n\tcase $previous in\n" + values +
	       R"(	esac
	if [[ -n $words ]]; then
		mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
	elif [[ -z $word || $current == -* ]]; then
		mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
	fi
}
complete -o bashdefault -o default -F _zortex )" +
	       program.get_name() + "\n";
}

/// Text inside '...[...]' of a description of zsh.
std::string zshText(const std::string& text)
{
	std::string escaped = replaced(text, "'", "'\\''");
	for (const char* special : {"[", "]", ":"})
	{
		escaped = replaced(escaped, special, std::string("\\") + special);
	}
	return escaped;
}

std::string zshCompletion(const CLI::App& program)
{
	std::string commandNames;
	std::string cases;
	for (const CLI::App* command : listedCommands(program))
	{
		commandNames += "\t\t'" + command->get_name() + ":" + zshText(command->get_description()) + "'\n";
		cases += "\t" + command->get_name() + ")\n\t\t_arguments";
		for (const CLI::Option* option : command->get_options([](const CLI::Option* candidate) { return candidate->nonpositional(); }))
		{
			for (const std::string& name : namesOf(*option))
			{
				const std::string words = wordsOf(name);
				const std::string value =
				    !takesValue(*option) ? "" : ":" + zshText(valueText(*option)) + ":" + (words.empty() ? "_files" : "(" + words + ")");
				cases.append(" \\\n\t\t\t'*").append(name).append("[");
				cases.append(zshText(option->get_description())).append("]").append(value).append("'");
			}
		}
		cases += " \\\n\t\t\t'*:file:_files'\n\t\t;;\n";
	}
	return "#compdef " + program.get_name() + "\n# Completion for zsh. Written by '" + program.get_name() + " generate zsh'.\n_" +
	       program.get_name() + "() {\n\tlocal -a commands=(\n" + commandNames + R"(	)
	if ((CURRENT == 2)); then
		_describe command commands
		return
	fi
	shift words
	((CURRENT--))
	case $words[1] in
)" + cases +
	       "\tesac\n}\n_" + program.get_name() + " \"$@\"\n";
}
} // namespace

CLI::App* addGenerate(CLI::App& program, GenerateOptions& options)
{
	CLI::App* const command = program.add_subcommand("generate", "Write the manual page, the documentation or a shell's completions");
	command->group("");
	command->add_option("KIND", options.kind, "man, markdown, bash or zsh")->required();
	command->add_option("OUT", options.output, "Output file (default: standard output)");
	return command;
}

void runGenerate(const CLI::App& program, const GenerateOptions& options)
{
	struct Kind
	{
		const char* name;
		std::string (*make)(const CLI::App&);
	};
	static constexpr Kind kKinds[] = {{"man", manPage}, {"markdown", markdownPage}, {"bash", bashCompletion}, {"zsh", zshCompletion}};
	const auto* const kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& one) { return options.kind == one.name; });
	if (kind == std::end(kKinds))
	{
		throw UsageError("KIND: '" + options.kind + "' is none of man, markdown, bash and zsh");
	}
	if (options.output.empty())
	{
		std::cout << kind->make(program);
		return;
	}
	AtomicOutput output(options.output);
	std::ofstream file(output.path(), std::ios::binary);
	file << kind->make(program);
	file.close();
	if (!file)
	{
		throw Refusal(options.output, "cannot be written");
	}
	output.commit();
}
} // namespace zortex
