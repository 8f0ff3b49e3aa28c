package body Plant is
   Counter : Short_Integer := 6;

   procedure Reset is
   begin
      Counter := (if Main_Motor.Ready then Short_Integer (Ticks mod 100) else Table (1, Off));
      Ticks := Integer (Counter) + Character'Pos (Name (1));
      Bits (3) := Main_Status.Fault;
      Weight := Fixed (1.0);
   end Reset;
end Plant;
