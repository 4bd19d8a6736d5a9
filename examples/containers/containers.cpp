// Containers and tokenizers: a sentence split into words with CStringTokenizer, the
// words counted in a CHashtable, kept in order of first sight in a CStringVector,
// collected in CStringSets for set algebra, a Vector of numbers, and a CStringMap of
// settings parsed from "key=value" pairs.
#include <lumo/Lumo.h>

#include <cstdio>

using namespace lumo::base;
using namespace lumo::util;

namespace {

// Sort callback for CStringVector: it hands over pointers to two elements.
int ByText(void const* a, void const* b) {
    return static_cast<CString const*>(a)->Compare(*static_cast<CString const*>(b));
}

} // namespace

int main() {
    lumo::Initialize();

    // Split on spaces and punctuation; runs of delimiters count as one.
    CStringTokenizer words("the cat saw the dog, and the dog saw a bird.", " ,.");
    std::printf("%lu tokens\n", words.GetTokenCount());
    CHashtable<CString, long> counts; // word -> how often it appears
    CStringVector firstSeen;          // each word once, in the order met
    Vector<long> lengths;             // length of every token
    while (words.HasMoreTokens()) {
        CString const word = words.GetNextToken();
        lengths.AddElement(static_cast<long>(word.GetLength()));
        if (long* n = counts.Find(word)) {
            ++*n;
        } else {
            counts.Put(word, 1);
            firstSeen.AddElement(word);
        }
    }
    std::printf("distinct words in order: ");
    for (unsigned long i = 0; i < firstSeen.GetSize(); ++i)
        std::printf("%s%s", i ? " " : "", static_cast<char const*>(firstSeen[i]));
    std::printf("\n");

    firstSeen.Sort(&ByText);
    for (unsigned long i = 0; i < firstSeen.GetSize(); ++i)
        std::printf("  %-5s x%ld\n", static_cast<char const*>(firstSeen[i]),
                    counts.Get(firstSeen[i]));

    long total = 0;
    for (unsigned long i = 0; i < lengths.GetSize(); ++i)
        total += lengths[i];
    std::printf("%lu word lengths, %ld letters in all, the first 4-letter word at %ld\n",
                lengths.GetSize(), total, lengths.GetIndexOf(4));

    // Set algebra: what two lists of tags have in common, and what only one has.
    CStringSet mine, yours;
    for (char const* tag : {"red", "green", "blue"})
        mine.Put(tag);
    for (char const* tag : {"green", "blue", "black"})
        yours.Put(tag);
    CStringSet both = mine;
    both *= yours;
    CStringSet onlyMine = mine;
    onlyMine -= yours;
    std::printf("both: %lu tags (green %s, red %s); only mine: %lu (red %s)\n", both.GetSize(),
                both.Contains("green") ? "in" : "out", both.Contains("red") ? "in" : "out",
                onlyMine.GetSize(), onlyMine.Contains("red") ? "in" : "out");

    // A map keeps insertion order; this one ignores case in its keys.
    CStringMap settings(false);
    CStringTokenizer pairs("Host=example.org;port=8080;MODE=fast;mode=safe", ";");
    while (pairs.HasMoreTokens()) {
        CString const pair = pairs.GetNextToken();
        long const eq = pair.Find('=');
        settings.Put(pair.Left(static_cast<unsigned long>(eq)),
                     pair.Mid(static_cast<unsigned long>(eq) + 1));
    }
    for (unsigned long i = 0; i < settings.GetSize(); ++i)
        std::printf("  %s = %s\n", static_cast<char const*>(settings.GetKeyAt(i)),
                    static_cast<char const*>(settings.GetAt(i)));
    std::printf("\"HOST\" looks up %s\n", static_cast<char const*>(settings.Get("HOST")));

    // Out-of-range access throws; it never reads past the end.
    try {
        lengths.GetElementAt(99);
    } catch (CArrayIndexOutOfBoundsException const& e) {
        std::printf("index 99 of %lu: %s\n", lengths.GetSize(), e.GetClass()->GetName());
    }
    lumo::Terminate();
    return 0;
}
