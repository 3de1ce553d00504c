// Who makes the program and where they are reached. A release replaces this one file.
#ifndef MOSAICON_MAKER_H_
#define MOSAICON_MAKER_H_

inline constexpr char kMakerName[] = "Kovel Software";
inline constexpr char kSupportEmail[] = "support@kovel-software.example";

#endif  // MOSAICON_MAKER_H_
