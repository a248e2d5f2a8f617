// keypad RECORDING: which keys of a telephone were pressed. A key sounds two tones, one for its row and one for its
// column; Goertzel's algorithm measures single frequencies where a whole transform would be a waste.
#include <algorithm>
#include <string>

#include "support.h"

constexpr int kTones = 4;
constexpr double kRows[kTones] = {697, 770, 852, 941}, kColumns[kTones] = {1209, 1336, 1477, 1633};
constexpr char kKeys[kTones][kTones + 1] = {"123A", "456B", "789C", "*0#D"};

// The power of each of four frequencies in `len` samples; a sine of amplitude 1 has power 1.
static void Measure(const Orva32f* src, int32_t len, int32_t rate, const double (&hertz)[kTones],
                    double (&power)[kTones]) {
  for (int i = 0; i < kTones; ++i) {
    Orva32fc bin;
    CHECK(ORVAS_Goertz_32f(src, len, &bin, static_cast<Orva32f>(hertz[i] / rate)));  // in cycles per sample
    power[i] = 4 * (static_cast<double>(bin.re) * bin.re + static_cast<double>(bin.im) * bin.im) / len / len;
  }
}

int main(int argc, char** argv) {
  const Recording recording = ReadRecording(argc, argv, 1);
  const int32_t block = recording.rate / 40;  // 25 ms tell the frequencies apart
  std::string pressed;
  char last = ' ';

  printf("seconds,697,770,852,941,1209,1336,1477,1633\n");
  for (int32_t start = 0; start + block <= recording.len; start += block) {
    double rows[kTones], columns[kTones];
    Measure(recording.samples + start, block, recording.rate, kRows, rows);
    Measure(recording.samples + start, block, recording.rate, kColumns, columns);
    printf("%.9g", static_cast<double>(start) / recording.rate);
    for (double power : rows) printf(",%.9g", power);
    for (double power : columns) printf(",%.9g", power);
    printf("\n");

    // A key sounds where one row and one column are loud, and is new where it did not sound before.
    const double* row = std::max_element(rows, rows + kTones);
    const double* column = std::max_element(columns, columns + kTones);
    const char key = std::min(*row, *column) > 0.01 ? kKeys[row - rows][column - columns] : ' ';
    if (key != ' ' && key != last) pressed += key;
    last = key;
  }
  fprintf(stderr, "pressed: %s\n", pressed.c_str());
  FreeRecording(recording);
}
