// A scripted double of the platform, linked in its place.
//
// A test says how the platform answers (on), calls the interface, and reads one transcript of all that happened in its
// order: every platform call with its arguments, and every diagnostic record. What was not said succeeds with error 0
// and writes no output.
#ifndef SCRIPTED_PLATFORM_H
#define SCRIPTED_PLATFORM_H

#include <qcmap_client.h>

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace scripted {

// How one platform method answers.
class Answer {
public:
    // Returns false and writes err; 0 is an error word like any other.
    Answer& fails(uint32_t err)
    {
        succeeds_ = false;
        err_ = err;
        return *this;
    }
    // Returns true and writes err.
    Answer& succeeds(uint32_t err = 0)
    {
        succeeds_ = true;
        err_ = err;
        return *this;
    }
    // Writes value to the method's output of that name (as the method's own double names it). The type must be the
    // output's own. Outputs are written on failure too when they were given.
    template <typename T>
    Answer& gives(const std::string& output, const T& value)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        std::vector<unsigned char> bytes(sizeof(T));
        std::memcpy(bytes.data(), &value, sizeof(T));
        outputs_[output] = std::move(bytes);
        return *this;
    }
    // The same for an output that is an array or a text: count elements.
    template <typename T>
    Answer& gives_array(const std::string& output, const T* values, size_t count)
    {
        std::vector<unsigned char> bytes(sizeof(T) * count);
        if (count > 0) std::memcpy(bytes.data(), values, bytes.size());
        outputs_[output] = std::move(bytes);
        return *this;
    }

private:
    friend class Call;
    bool succeeds_ = true;
    uint32_t err_ = 0;
    std::map<std::string, std::vector<unsigned char>> outputs_;
};

// One line of the transcript: a call stands where it was entered, a record where it was written.
struct Line {
    const char* kind;      // "call", "info" or "error"
    std::string function;  // of a record, as it gives it
    std::string text;      // a call with its arguments; what follows a record's "[%s]%s(): ", with its values
};

struct LogLine {
    uint32_t level;        // 4 information, 8 error
    std::string function;  // as the record gives it
    std::string text;      // what follows "[%s]%s(): ", with its values
};

class Platform {
public:
    // Forgets answers and transcript.
    void reset();
    // The answer of every call of a method, or of its call_number-th call (1 is the first since reset or forget).
    Answer& on(const std::string& method)
    {
        return answers_[method];
    }
    Answer& on(const std::string& method, int call_number)
    {
        return numbered_[{method, call_number}];
    }
    // Forgets transcript and call numbers, keeps the answers: for what a test does before the call it is about.
    void forget();

    std::vector<Line> transcript;
    // The transcript as a row writes it: "call  SetNatType(2)", "info  entry", "error Set Nat Type (wwan_handle=3)
    // error 9". A record under another function's name bears that name: "info  zr_nexa_inds_cb: ...".
    std::vector<std::string> lines(const std::string& function) const;
    // Calls and records apart, for a test that looks at one of them.
    std::vector<std::string> journal;
    std::vector<LogLine> log;
    // What is wrong with a record or a call itself: a wrong tag, a missing value, an answer nobody asked for.
    std::vector<std::string> complaints;
    // The callback and the user data of the last object made, for indications.
    client_status_ind_t indication_cb = nullptr;
    void* indication_user = nullptr;
    int objects = 0;  // alive

    // Answers that were said and never used, by name.
    std::vector<std::string> unused_answers() const;

    // A call that takes no answer.
    void note_call(const std::string& call);

private:
    friend class Call;
    const Answer& take(const std::string& method);
    std::map<std::string, Answer> answers_;
    std::map<std::pair<std::string, int>, Answer> numbered_;
    std::map<std::string, int> calls_;
    std::vector<std::string> used_;
};

Platform& platform();

// Both lists of lines in one, each line behind a line break: "- " marks what was expected and not seen, "+ " what was
// seen and not expected. Empty when the lists are the same.
std::string difference(const std::vector<std::string>& expected, const std::vector<std::string>& seen);

// One call of a method, as its double writes it down:
//     return Call("SetNatType").arg(nat_type).finish(err);
//     return Call("GetNatType").out("nat_type", nat_type).finish(err);
// Its line reads "SetNatType(2)", "GetNatType()", with names "AddStaticNatEntry(private_ip=1 private_port=2)".
class Call {
public:
    explicit Call(const char* method)
        : method_(method), answer_(platform().take(method)), line_(platform().transcript.size())
    {
        platform().transcript.push_back({"call", "", method_});
    }

    template <typename T>
    Call& arg(T value)
    {
        return add(to_text(value));
    }
    template <typename T>
    Call& arg(const char* name, T value)
    {
        return add(std::string(name) + "=" + to_text(value));
    }
    // A text in a fixed-size field: up to its zero or its end, in quotes.
    Call& text(const char* name, const char* field, size_t size);
    // Bytes in hexadecimal.
    Call& bytes(const char* name, const void* field, size_t size);
    // An output pointer. Null is written down as name=null.
    template <typename T>
    Call& out(const char* name, T* pointer)
    {
        if (pointer == nullptr) return add(std::string(name) + "=null");
        write_output(name, pointer, sizeof(T), false);
        return *this;
    }
    // An output that takes as many elements as were given, capacity at most.
    template <typename T>
    Call& out_array(const char* name, T* pointer, size_t capacity)
    {
        if (pointer == nullptr) return add(std::string(name) + "=null");
        write_output(name, pointer, sizeof(T) * capacity, true);
        return *this;
    }
    bool finish(qmi_error_type_v01* err);

    bool succeeds() const
    {
        return answer_.succeeds_;
    }

private:
    template <typename T>
    static std::string to_text(T value)
    {
        if constexpr (std::is_enum_v<T>) {
            return std::to_string(static_cast<long long>(value));
        } else {
            return std::to_string(value);
        }
    }
    Call& add(const std::string& argument);
    void write_output(const char* name, void* pointer, size_t size, bool shorter_allowed);

    std::string method_;
    std::string arguments_;
    const Answer& answer_;
    size_t line_;
};

}  // namespace scripted

#endif
