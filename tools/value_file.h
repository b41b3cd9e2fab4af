#pragma once

#include <kvbase/kvbase.h>

#include <string>
#include <vector>

#include "value_survey.h"

namespace kvtool {

/// How many levels the tool prints and writes. The text form indents by the depth, so a hostile file could
/// ask for a text as large as the square of its size.
constexpr std::size_t kDeepestTree = 256;

/// How values are kept in a file.
enum class ValueForm { Text, Binary };
/// The names of the forms, "text" and "binary".
const char *formName(ValueForm form);

/// A file of values in either form, read whole. It is written in the form in which it was read.
class ValueFile {
public:
    /// Reads the file; its content tells the form, by the rule of KV_UValDict::ReadFile. Throws BadInput, for
    /// a text with the line, when it isn't a dictionary, or has 4 GiB and more.
    explicit ValueFile(const std::string &file);
    /// The same, or an empty dictionary, to be written in that form, when there is no such file.
    static ValueFile openOrNew(const std::string &file, ValueForm form);

    const std::string &file() const { return m_file; }
    KV_UValDict &dict() { return m_dict; }
    ValueForm form() const { return m_form; }
    /// Has the values written in another form.
    void setForm(ValueForm form) { m_form = form; }

    /// What the file holds and no value does (value_survey.h). Writing the values back over the file
    /// loses it.
    const std::vector<std::string> &unkept() const { return m_survey.unkept; }
    /// What was not read as the file's text has it (value_survey.h): wherever the values go, it is lost.
    const std::vector<std::string> &misread() const { return m_survey.misread; }
    /// Throws BadInput when misread() tells of anything.
    void refuseMisread() const;
    /// Whether there are more levels than kDeepestTree.
    bool isTooDeep();
    /// What the form can't hold of the values as they now are, at most ten lines "PATH: reason". Not to be
    /// asked of values that are too deep.
    std::vector<std::string> unwritable();

    /// Writes the values to a file, which is replaced wholly or not at all. Throws BadInput, and the file
    /// stays as it was, when the values are too deep, or couldn't be read again; without force also when
    /// misread() or unwritable(), or unkept() and the file is the one that was read, tell of a loss.
    void write(const std::string &to, bool force);

private:
    struct New {};
    ValueFile(const std::string &file, ValueForm form, New) : m_file(file), m_form(form) {}
    void surveyBinary(const std::string &bytes, std::size_t size);
    std::string bytes(const std::string &to);
    std::vector<std::string> unreadableKeys();

    std::string m_file;
    KV_UValDict m_dict{0};
    ValueForm m_form = ValueForm::Text;
    TextSurvey m_survey;
};

}  // namespace kvtool
