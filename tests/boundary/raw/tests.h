// The groups of tests.
#pragma once

// What holds for every class, every interface and every slot.
void TestIdentity(void);
void TestClassFactories(void);
void TestLifetime(void);
void TestPointers(void);

// What the operations do, with their results.
void TestManagerOperations(void);
void TestStudyAreaOperations(void);
void TestCollectionOperations(void);
void TestItemOperations(void);
void TestNameLists(void);
void TestValues(void);
void TestErrors(void);
void TestHost(void);
