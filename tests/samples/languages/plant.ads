--  Variables of a device in Ada: ranges, records, arrays with bounds of their own, enumerations.
package Plant is
   pragma Elaborate_Body;

   type Mode is (Off, Manual, Automatic);
   type Percent is range 0 .. 100;
   type Fixed is delta 0.125 range -64.0 .. 64.0;
   type Gains is array (-1 .. 2) of Float;
   type Grid is array (1 .. 2, Mode) of Short_Integer;
   type Flags is array (0 .. 7) of Boolean;
   pragma Pack (Flags);

   type Motor is record
      Speed    : Float := 1.5;
      State    : Mode := Manual;
      Load     : Percent := 30;
      Gain     : Gains := (others => 2.0);
      Ready    : Boolean := True;
      Position : Long_Long_Integer := -3;
   end record;

   type Status is record
      Fault : Boolean;
      Level : Percent;
      State : Mode;
   end record;
   for Status use record
      Fault at 0 range 0 .. 0;
      Level at 0 range 1 .. 7;
      State at 1 range 0 .. 1;
   end record;
   for Status'Size use 16;

   Main_Motor : Motor := (1.5, Manual, 30, (others => 2.0), True, -3);
   Main_Status : Status := (True, 50, Automatic);
   Table : Grid := (others => (others => 4));
   Bits : Flags := (others => False);
   Weight : Fixed := 0.5;
   Ticks : Integer := 5;
   pragma Export (C, Ticks, "ticks");
   Name : String (1 .. 5) := "plant";

   procedure Reset;
   pragma Export (C, Reset, "reset");
end Plant;
