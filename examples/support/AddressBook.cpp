#include "AddressBook.h"

#include "ReadFile.h"
#include "SampleFailure.h"
#include "SampleText.h"

#include <CQWString.h>

#include <algorithm>
#include <map>

unsigned int ParseNumber(const CQSString& field, const std::string& where)
{
    bool digits = !field.IsEmpty();
    for (int i = 0; i < field.GetLength(); ++i) {
        digits = digits && field[i] >= '0' && field[i] <= '9';
    }
    // ToUINT() wraps at 32 bits; the number's own text tells whether it did.
    CQSString text;
    if (digits) {
        text.UToString(field.ToUINT());
    }
    if (!SameText(text, field) || Bytes(text) == "0") {
        RefuseInput(where + "the number '" + Bytes(field) + "' is not within 1 to 4294967295");
    }
    return field.ToUINT();
}

namespace
{

// Wide text and back keeps UTF-8 as it is, and nothing else but a leading byte-order mark.
void RequireUtf8(const CQSString& field, const char* name, const std::string& where)
{
    if (!SameText(CQSString(CQWString(field)), field)) {
        RefuseInput(where + "the " + name + " is not UTF-8 text, or opens with a byte-order mark");
    }
}

std::vector<CQSString> SplitFields(const CQSString& line)
{
    std::vector<CQSString> fields;
    for (int start = 0;;) {
        const int tab = line.Find('\t', start);
        const int end = tab < 0 ? line.GetLength() : tab;
        CQSString field;
        line.GetSubString(field, start, end - start);
        fields.push_back(std::move(field));
        if (tab < 0) {
            return fields;
        }
        start = tab + 1;
    }
}

Contact ParseContact(const CQSString& line, const std::string& where)
{
    const std::vector<CQSString> fields = SplitFields(line);
    if (fields.size() != 4) {
        RefuseInput(where + std::to_string(fields.size()) +
                    " fields instead of 4 (number, nickname, group, remark, with tabs between)");
    }
    Contact contact;
    contact.number = ParseNumber(fields[0], where);
    const char* const names[] = {"number", "nickname", "group", "remark"};
    for (size_t i = 1; i < fields.size(); ++i) {
        RequireUtf8(fields[i], names[i], where);
    }
    contact.nickname = fields[1];
    contact.group = fields[2];
    contact.remark = fields[3];
    return contact;
}

CQSString TakeLine(const CQSString& text, int& position)
{
    const int newline = text.Find('\n', position);
    const int end = newline < 0 ? text.GetLength() : newline;
    CQSString line;
    text.GetSubString(line, position, end - position);
    position = end + 1;
    if (!line.IsEmpty() && line[line.GetLength() - 1] == '\r') {
        CQSString withoutReturn;
        line.TrimRight(1, withoutReturn);
        return withoutReturn;
    }
    return line;
}

} // namespace

std::vector<Contact> ReadContacts(const CQSString& path)
{
    std::vector<char> content;
    try {
        content = ReadFile(path);
    } catch (const SampleFailure& failure) {
        RefuseInput(failure.text);
    }
    CQSString text;
    text.SetData(reinterpret_cast<unsigned char*>(content.data()), int(content.size()));

    std::vector<Contact> contacts;
    std::map<unsigned int, int> lineOfNumber;
    int position = text.IsEmpty() || !text.IsStartWith("\xEF\xBB\xBF") ? 0 : 3;
    for (int lineNumber = 1; position < text.GetLength(); ++lineNumber) {
        const CQSString line = TakeLine(text, position);
        const bool header = lineNumber == 1 && line.IsStartWith("number\t");
        if (line.IsEmpty() || header) {
            continue;
        }
        const std::string where = Bytes(path) + ":" + std::to_string(lineNumber) + ": ";
        contacts.push_back(ParseContact(line, where));
        const auto [first, isNew] = lineOfNumber.emplace(contacts.back().number, lineNumber);
        if (!isNew) {
            RefuseInput(where + "the number " + std::to_string(first->first) +
                        " already stands in line " + std::to_string(first->second));
        }
    }
    if (contacts.empty()) {
        RefuseInput(Bytes(path) + ": holds no contact");
    }
    return contacts;
}

std::vector<Group> CollectGroups(const std::vector<Contact>& contacts)
{
    std::vector<Group> groups;
    for (const Contact& contact : contacts) {
        auto found = std::find_if(groups.begin(), groups.end(), [&](const Group& group) {
            return SameText(group.name, contact.group);
        });
        if (found == groups.end()) {
            groups.push_back({unsigned(groups.size()) + 1, contact.group, {}});
            found = groups.end() - 1;
        }
        found->members.push_back(&contact);
    }
    return groups;
}
