! Variables of a device in Fortran: modules, a common block, bounds, strings, complex numbers.
module plant
    use iso_c_binding
    implicit none
    type :: motor
        real(4) :: speed = 1.5
        integer(2) :: mode = 3
        real(8) :: gains(-1:2) = 2.0d0
        character(len=6) :: name = "feed"
        logical :: is_ready = .true.
    end type
    type(motor), save :: motors(2)
    integer(8), save :: position = -4
    complex(8), save :: phasor = (1.0d0, 2.0d0)
    character(len=10), save :: title = "plant"
    integer(2), save :: grid(2, 0:3) = 5
    real(4), save, bind(c, name="ratio") :: ratio = 0.5
    real(8), allocatable, save :: samples(:)
    integer, pointer, save :: place => null()
contains
    subroutine reset() bind(c, name="reset")
        integer, save :: starts = 6
        real(4) :: low, high
        common /limits/ low, high
        starts = starts + 1
        low = ratio
        high = low + real(starts) + motors(1)%speed
        position = position + starts
        phasor = phasor * 2.0d0
    end subroutine
end module
