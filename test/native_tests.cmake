# Run by ctest: gives the tests that an emulator cannot run the label "native".

# leave_to_hardware(SUITE TEST...)
function(leave_to_hardware suite)
    foreach(test IN LISTS ARGN)
        set_tests_properties(${suite}/${test} PROPERTIES LABELS "${suite};native")
    endforeach()
endfunction()

# They wait until /proc shows that the program waits for a key; it shows what the emulator waits for.
leave_to_hardware(support_tests
    ReadInput.TakesOneKeyAfterTheOther
    ReadInput.TakesAWholeArrowKey
    ReadInput.TakesALoneEscape
    ReadInput.WaitsForTheRestOfASequence
    ReadInput.DoesNotWaitAfterAFinishedSequence
    ReadInput.EndsTheMenuAtCtrlC
    ReadInput.KnowsARepeatedEnter
    ReadInput.LeavesOneDescriptorOpenForEachKeyTyped
    TypeAhead.IsThrownAway
    TypeAhead.TakesTheRestOfItsLastSequenceAlong
    TypeAhead.WithAnEnterTakesAlongWhatFollows
    TypeAhead.WithAnEnterIsFollowedByQuiet
    TypeAhead.WithAnEnterMakesTheNextOneARepeat
    TypeAhead.WithAnEnterIsFollowedByQuietHoweverManySignalsComeIn
    TypeAhead.WithoutAnEnterIsNotWaitedFor
    ReadInput.YieldsHalfASequenceThatEndsWithTheInput
    support_test.WaitsForEnterInTheRawMode)
leave_to_hardware(app_tests
    ProcessSetup.KeepsOutputTogetherUntilItIsFlushed)

# With the emulator, posix_spawn always succeeds, even if the program cannot be started.
leave_to_hardware(support_tests
    runner_test.FailsWhenTheProgramCannotBeStarted
    runner_test.PassesOnTheRunnersFailureWhenLookingForAProgram)
leave_to_hardware(flash_tests
    flashtools_test.PassesOnTheRunnersFailure)
leave_to_hardware(docs_tests
    readtxt_test.FailsWithoutClear)

# The emulator adds signals to those that a child inherits.
leave_to_hardware(flash_tests
    flashtools_test.RunsTheCoreProgramWithHangUpsIgnored)

# The emulator's own work and memory count as that of the program.
leave_to_hardware(support_tests
    TypeAhead.TakesNoMemory
    support_test.WaitsAtEndOfFileWithoutSpinning)

# The emulator opens files in the root folder, which the test has left.
leave_to_hardware(app_tests
    ProcessSetup.KeepsTheNumberOfAClosedDescriptorWithoutANullDevice)
