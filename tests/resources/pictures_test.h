// Resource numbers of the test program; read by the resource compiler too.
#ifndef MOSAICON_TESTS_RESOURCES_PICTURES_TEST_H_
#define MOSAICON_TESTS_RESOURCES_PICTURES_TEST_H_

#define ID_TEST_BUSY 101
#define ID_TEST_SPLASH 102
#define ID_TEST_APPLICATION 103
#define ID_TEST_START 104
#define ID_TEST_MAKER 105

#endif  // MOSAICON_TESTS_RESOURCES_PICTURES_TEST_H_
